// What examples/host_objcpp uses of Foundation, as Apple documents it, so that the example is
// compiled where no SDK is. Nothing here is linked.
#ifndef SCALER_ISP_TEST_FOUNDATION_H
#define SCALER_ISP_TEST_FOUNDATION_H

#import <objc/NSObject.h>

#include <dispatch/dispatch.h>

typedef struct _NSRange {
    NSUInteger location;
    NSUInteger length;
} NSRange;

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF32LittleEndianStringEncoding = 0x9c000100 };
static const NSInteger NSNotFound = NSIntegerMax;

@interface NSData : NSObject
@property(readonly) const void *bytes __attribute__((objc_returns_inner_pointer));
@end

@interface NSMutableData : NSData
- (void)increaseLengthBy:(NSUInteger)extraLength;
@end

@interface NSString : NSObject
@property(readonly) const char *UTF8String __attribute__((objc_returns_inner_pointer));
+ (instancetype)stringWithString:(NSString *)string;
- (instancetype)initWithBytes:(const void *)bytes
                       length:(NSUInteger)len
                     encoding:(NSStringEncoding)encoding;
- (NSRange)rangeOfString:(NSString *)searchString;
- (NSData *)dataUsingEncoding:(NSStringEncoding)encoding;
@end

@interface NSMutableString : NSString
- (void)appendFormat:(NSString *)format, ... __attribute__((format(__NSString__, 1, 2)));
@end

// What the compiler makes of @"...".
@interface NSConstantString : NSString
@end

@interface NSArray<ObjectType> : NSObject
@property(readonly) NSUInteger count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
@end

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo *processInfo;
@property(readonly, copy) NSArray<NSString *> *arguments;
@end

#endif
