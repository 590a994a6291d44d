#!/usr/bin/env python3
"""Unpacks the archive for macOS and uses it as far as Linux can: ispctl programs the virtual scaler in the
loader, for both processors, and hosts link by CMake, by pkg-config and by a plain command.

usage: check_macos_archive.py ARCHIVE VERSION SYSROOT ARCH=RUNTIME=LAUNCHER...

Each last argument names a processor, the directory of its libc++ and the words that run a program in the
loader.
"""

import os
import pathlib
import re
import shlex
import shutil
import sys

from check_files import promised
from check_selftest import check_passes
from release_archive import ENVIRONMENT, SOURCES, run, unpacked

sys.path[:0] = [str(SOURCES / "packaging/macos"), str(SOURCES / "tests/macos")]
import code_signature
import macho_reader
from check_program import Installation, check_commands, check_demo

HERE = pathlib.Path(__file__).resolve().parent
LLVM = pathlib.Path("/usr/lib/llvm-19/bin")
PARTS = ("ispctl", "virtual_isp", "virtual_comm", "virtual_device", "virtual_sign_verify",
         "selftest_probe")
ARCHITECTURES = ["arm64", "x86_64"]
OF_ARCHIVES = {"README.md", "LICENSE", "SHA256SUMS", "licences/CLI11.txt", "licences/fmt.txt",
               "licences/mbedtls.txt", "licences/nlohmann-json.txt", "include/ScalerIsp/module.modulemap"}
SYSTEM = re.compile(r"/usr/lib/lib(System\.B|c\+\+\.1|iconv\.2)\.dylib|@rpath/libScalerIsp\.dylib")
OBJECTIVE_C = """@import ScalerIsp;
@import ScalerIsp.Plugins;
int run(void);
int run(void) { return OperateScaler(L"tool --isp", 0, 0, 0) + (int)sizeof(STRUCT_C_STYLE_MAP_FW); }
"""


def files_below(root):
    return {str(path.relative_to(root)): path for path in sorted(root.rglob("*")) if path.is_file()}


def check_files(root):
    expected = set(promised(HERE / "installed_files.txt", "libScalerIsp.dylib", PARTS)) | OF_ARCHIVES
    found = {re.sub(r"Targets-\w+\.cmake$", "Targets-CONFIG.cmake", name)
             for name in files_below(root) if ".dSYM/" not in name}
    assert found == expected, found ^ expected


def check_binaries(root):
    """Both processors, signed, with the system's libraries and without debug information or a run path."""
    binaries = [path for name, path in files_below(root).items()
                if ".dSYM/" not in name and path.read_bytes()[:4] == b"\xca\xfe\xba\xbe"]
    assert len(binaries) == 8, binaries
    for path in binaries:
        images = macho_reader.load(path)
        assert sorted(images) == ARCHITECTURES, f"{path.name}: {sorted(images)}"
        for image in images.values():
            where = f"{path.name}, {image.arch}"
            found = code_signature.problems(image)
            assert not found, f"{where}: {found}"
            assert code_signature.is_ad_hoc(image), f"{where}: not signed ad hoc"
            assert image.minimum_os == "11.0.0" and image.rpaths == [], f"{where}: {image.rpaths}"
            other = [name for name in image.libraries if not SYSTEM.fullmatch(name)]
            assert not other, f"{where} needs {other}"
            assert not any(segment.name == "__DWARF" for segment in image.segments), where
    library, copy = (root / name / "libScalerIsp.dylib" for name in ("lib", "share/scaler-isp/virtual"))
    assert library.read_bytes() == copy.read_bytes(), "the virtual scaler has another library"
    check_debug_information(library, library.parent)


def check_debug_information(library, folder):
    """The UUIDs by which a debugger finds it in a folder."""
    dwarf = macho_reader.load(folder / f"{library.name}.dSYM/Contents/Resources/DWARF" / library.name)
    for arch, image in macho_reader.load(library).items():
        assert image.uuid and image.uuid == dwarf[arch].uuid, f"debug information of another build: {arch}"


def check_linked(program, root):
    """A program that names the library by its run path, and only functions that it exports."""
    images = macho_reader.load(program)
    for image in images.values():
        assert "@rpath/libScalerIsp.dylib" in image.libraries, image.libraries
        symbols = {bind.symbol for bind in image.loader_fixups()[0]
                   if bind.library == "@rpath/libScalerIsp.dylib"}
        missing = symbols - set(macho_reader.load(root / "lib/libScalerIsp.dylib")[image.arch].exports())
        assert symbols and not missing, missing
    return images


def check_cmake(root, folder, version, sysroot):
    build = folder / "consumer"
    run("cmake", "-S", HERE / "consumer", "-B", build, "-G", "Ninja", f"-DEXPECTED_VERSION={version}",
        f"-DScalerIsp_DIR={root}/lib/cmake/ScalerIsp", f"-DMACOS_SYSROOT={sysroot}",
        f"-DCMAKE_TOOLCHAIN_FILE={SOURCES}/packaging/macos/toolchain.cmake")
    run("cmake", "--build", build)
    for program in ("host_c", "host_cpp"):
        assert sorted(check_linked(build / program, root)) == ARCHITECTURES


def clang(arch, sysroot, *words):
    run(LLVM / "clang++", f"--target={arch}-apple-macos11", "-isysroot", sysroot, "-Werror", *words)


def check_commands_of_users(root, folder, sysroot, arch):
    """Linked with what pkg-config says, and with the options that the README of an example names."""
    asked = shlex.split(run("pkg-config", "--cflags", "--libs", "scaler-isp",
                            env=dict(ENVIRONMENT, PKG_CONFIG_LIBDIR=str(root / "lib/pkgconfig"))))
    plain = ["-I", root / "include", "-L", root / "lib", "-lScalerIsp"]
    for name, options in (("asked", asked), ("plain", plain)):
        program = folder / f"{name}_{arch}"
        clang(arch, sysroot, "-std=c++20", HERE / "consumer/host.cpp", "-fuse-ld=lld", *options,
              f"-Wl,-rpath,{root}/lib", "-o", program)
        assert check_linked(program, root)[arch].rpaths == [f"{root}/lib"]


def check_objective_c(root, folder, sysroot, arch):
    """The module map, and the host in Objective-C++ against declarations of what it uses of Foundation."""
    source = folder / "module.m"
    source.write_text(OBJECTIVE_C)
    clang(arch, sysroot, "-x", "objective-c", "-fmodules", f"-fmodules-cache-path={folder}/modules",
          "-I", root / "include", "-c", "-o", folder / "module.o", source)
    clang(arch, sysroot, "-std=c++20", "-fobjc-arc", "-Wall", "-Wextra", "-I", HERE / "declarations",
          "-I", root / "include", "-c", "-o", folder / "host.o",
          root / "share/scaler-isp/examples/host_objcpp/main.mm")


def check_loader(root, folder, arch, runtime, launcher):
    """ispctl as unpacked: its commands, the demo with the output of the README, and the self-test."""
    os.environ["MACHO_RUNTIME"] = runtime
    work = folder / f"work_{arch}"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir()
    installation = Installation(root, work, launcher)
    check_commands(installation, SOURCES)
    check_demo(installation, SOURCES)
    check_passes(root, work, in_loader=True, launcher=launcher)
    os.environ["MACHO_RPATH"] = str(root / "lib")
    run(*launcher, folder / f"plain_{arch}", root / "lib", env=os.environ)


def main():
    archive, version = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    sysroot = pathlib.Path(sys.argv[3]).resolve()
    with unpacked(archive) as root:
        folder = root.parent
        check_files(root)
        check_binaries(root)
        check_cmake(root, folder, version, sysroot)
        for word in sys.argv[4:]:
            arch, runtime, launcher = word.split("=", 2)
            check_commands_of_users(root, folder, sysroot, arch)
            check_objective_c(root, folder, sysroot, arch)
            check_loader(root, folder, arch, runtime, shlex.split(launcher))
            print(f"{archive.name}: {arch}: hosts link, ispctl programs the virtual scaler in the loader")


if __name__ == "__main__":
    main()
