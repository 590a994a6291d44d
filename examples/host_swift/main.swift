// A host in Swift for macOS that links the library:
//
//   swiftc main.swift -I PREFIX/include -L PREFIX/lib -lScalerIsp \
//       -Xlinker -rpath -Xlinker PREFIX/share/scaler-isp/virtual -o host_swift
//   ./host_swift --isp --fw "$PWD/monitor.bin"
//
// PREFIX is the directory of the installation, as an absolute path. With the package manager a target that
// depends on the product ScalerIsp needs none of these options.

import Foundation
import ScalerIsp

func show(_ text: String) {
    FileHandle.standardError.write((text + "\n").data(using: .utf8)!)
}

// Both callbacks run on the thread of the call. They are functions of C: they may not capture anything.
let onProgress: @convention(c) (Int32) -> Void = { percent in
    show("progress \(percent) %")
}

let onMessage: @convention(c) (UnsafeMutablePointer<CWideChar>?) -> Void = { text in
    guard var next = text else { return }
    var message = String.UnicodeScalarView()
    while next.pointee.value != 0 {
        message.append(next.pointee)
        next += 1
    }
    show("message: " + String(message).trimmingCharacters(in: .newlines))
}

/// The line that the library splits into the same words. REQUIRES: no word contains a quote.
func commandLine(_ words: [String]) -> [CWideChar] {
    let quoted = words.map { $0.contains(" ") ? "\"\($0)\"" : $0 }
    return Array(quoted.joined(separator: " ").unicodeScalars) + ["\0"]
}

if CommandLine.arguments.contains(where: { $0.contains("\"") }) {
    show("an argument cannot contain a quote")
    exit(EXIT_FAILURE)
}
// An application with windows makes the call on a thread of its own: it takes minutes.
let line = commandLine(["host"] + CommandLine.arguments.dropFirst())
let code = OperateScaler(line, nil, onProgress, onMessage)
show("result 0x" + String(UInt32(bitPattern: code), radix: 16, uppercase: true))
exit(code == 0 ? EXIT_SUCCESS : EXIT_FAILURE)
