// A host in Objective-C++ for macOS that links the library:
//
//   clang++ -std=c++20 -fobjc-arc main.mm -I PREFIX/include -L PREFIX/lib -lScalerIsp -framework Foundation \
//       -Wl,-rpath,PREFIX/share/scaler-isp/virtual -o host_objcpp
//   ./host_objcpp --isp --fw "$PWD/monitor.bin"
//
// PREFIX is the directory of the installation, as an absolute path.

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include <scaler_isp/OperateScaler.h>

namespace {

// Both callbacks run on the thread of the call.
void OnProgress(int percent) {
    std::fprintf(stderr, "progress %d %%\n", percent);
}

void OnMessage(wchar_t *text) {
    NSString *message = [[NSString alloc] initWithBytes:text
                                                 length:std::wcslen(text) * sizeof *text
                                               encoding:NSUTF32LittleEndianStringEncoding];
    std::fprintf(stderr, "message: %s\n", message ? message.UTF8String : "(no text)");
}

/// The line that the library splits into the same words; nil if one has a quote, which no line can pass.
NSString *CommandLineOf(NSArray<NSString *> *arguments) {
    NSMutableString *line = [NSMutableString stringWithString:@"host"];
    for (NSUInteger i = 1; i < arguments.count; ++i) {
        NSString *word = [arguments objectAtIndex:i];
        if ([word rangeOfString:@"\""].location != NSNotFound) {
            return nil;
        }
        const bool quoted = [word rangeOfString:@" "].location != NSNotFound;
        [line appendFormat:quoted ? @" \"%@\"" : @" %@", word];
    }
    return line;
}

/// wchar_t has 32 bits, terminator included in the data.
int Run(NSString *line) {
    NSMutableData *wide = [[line dataUsingEncoding:NSUTF32LittleEndianStringEncoding] mutableCopy];
    [wide increaseLengthBy:sizeof(wchar_t)];
    return OperateScaler(static_cast<const wchar_t *>(wide.bytes), nullptr, OnProgress, OnMessage);
}

} // namespace

int main() {
    @autoreleasepool {
        NSString *line = CommandLineOf(NSProcessInfo.processInfo.arguments);
        if (line == nil) {
            std::fprintf(stderr, "an argument cannot contain a quote\n");
            return EXIT_FAILURE;
        }
        // As in an application with windows: a call takes minutes, and the main thread is for events. The stack
        // of a queue is large enough.
        dispatch_async(dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
            const int code = Run(line);
            std::fprintf(stderr, "result 0x%X\n", static_cast<unsigned>(code));
            std::exit(code == SCALER_ISP_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE);
        });
    }
    dispatch_main();
}
