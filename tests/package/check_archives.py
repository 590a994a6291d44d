#!/usr/bin/env python3
"""Unpacks the archives of ./dev package and builds consumers from them, for Linux and for both
architectures of macOS.

usage: check_archives.py FOLDER VERSION SYSROOT
"""

import os
import pathlib
import platform
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
MACOS = HERE.parents[1] / "packaging/macos"
sys.path.insert(0, str(MACOS))
import macho_reader

LLVM = pathlib.Path("/usr/lib/llvm-19/bin")
ENVIRONMENT = {k: v for k, v in os.environ.items() if k != "LIBRARY_PATH"}
OBJECTIVE_C = """@import ScalerIsp;
@import ScalerIsp.Plugins;
int run(void);
int run(void) { return OperateScaler(L"tool --isp", 0, 0, 0) + (int)sizeof(STRUCT_C_STYLE_MAP_FW); }
"""


def run(*command, **options):
    subprocess.run([str(word) for word in command], check=True, env=ENVIRONMENT, **options)


def unpack(archive, folder):
    run("tar", "-xzf", archive, "-C", folder)
    root = folder / archive.name.removesuffix(".tar.gz")
    run("sha256sum", "--check", "--quiet", "SHA256SUMS", cwd=root)
    listed = {line.split("  ./", 1)[1] for line in (root / "SHA256SUMS").read_text().splitlines()}
    found = {str(p.relative_to(root)) for p in root.rglob("*") if p.is_file()} - {"SHA256SUMS"}
    assert listed == found, listed ^ found
    assert {"README.md", "LICENSE", "include/scaler_isp/ScalerIsp.h"} <= found
    readme = (root / "README.md").read_text()
    assert "@" not in readme
    assert max(map(len, readme.splitlines())) <= 110
    return root


def build_consumer(package, folder, version, *options):
    run("cmake", "-S", HERE / "consumer", "-B", folder, "-G", "Ninja", f"-DEXPECTED_VERSION={version}",
        f"-DScalerIsp_DIR={package}/lib/cmake/ScalerIsp", *options, stdout=subprocess.DEVNULL)
    run("cmake", "--build", folder, stdout=subprocess.DEVNULL)


def check_linux(package, folder, version):
    build_consumer(package, folder / "consumer", version)
    run("ctest", "--test-dir", folder / "consumer", "--no-tests=error", stdout=subprocess.DEVNULL)
    found = subprocess.run(["pkg-config", "--modversion", "scaler-isp"], text=True, check=True,
                           env=dict(ENVIRONMENT, PKG_CONFIG_LIBDIR=f"{package}/lib/pkgconfig"),
                           stdout=subprocess.PIPE).stdout.strip()
    assert found == version, found


def check_macos(package, folder, version, sysroot):
    native = platform.system() == "Darwin"
    options = ["-DCMAKE_OSX_ARCHITECTURES=x86_64;arm64", "-DCMAKE_OSX_DEPLOYMENT_TARGET=11.0"] \
        if native else [f"-DCMAKE_TOOLCHAIN_FILE={MACOS}/toolchain.cmake",
                        f"-DMACOS_SYSROOT={sysroot}"]
    build_consumer(package, folder / "consumer", version, *options)
    for program in ("host_c", "host_cpp"):
        images = macho_reader.load(folder / "consumer" / program)
        assert sorted(images) == ["arm64", "x86_64"], images
        for image in images.values():
            assert "@rpath/libScalerIsp.dylib" in image.libraries, image.libraries
            symbols = {bind.symbol for bind in image.loader_fixups()[0]
                       if bind.library == "@rpath/libScalerIsp.dylib"}
            missing = symbols - set(macho_reader.load(package / "lib/libScalerIsp.dylib")
                                    [image.arch].exports())
            assert symbols and not missing, missing
    clang = "clang" if native else LLVM / "clang"
    base = [] if native else ["-isysroot", sysroot]
    for arch in ("x86_64", "arm64"):
        run(clang, f"--target={arch}-apple-macos11", *base, "-x", "objective-c", "-fmodules",
            f"-fmodules-cache-path={folder}/modules", "-Werror", "-I", package / "include",
            "-c", "-o", folder / "module.o", "-", input=OBJECTIVE_C.encode())


def main():
    archives, version = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    sysroot = pathlib.Path(sys.argv[3]).resolve()
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        if platform.system() == "Linux":
            name = f"ScalerIsp-{version}-linux-{platform.machine()}.tar.gz"
            (folder / "linux").mkdir()
            check_linux(unpack(archives / name, folder / "linux"), folder / "linux", version)
            print(f"{name}: a consumer builds and runs")
        name = f"ScalerIsp-{version}-macos-universal.tar.gz"
        (folder / "macos").mkdir()
        package = unpack(archives / name, folder / "macos")
        check_macos(package, folder / "macos", version, sysroot)
        print(f"{name}: consumers build for x86_64 and arm64, the module map compiles")


if __name__ == "__main__":
    main()
