#pragma once

#import <Foundation/Foundation.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvane {

/// UTF-8 text as an NSString; empty if it is not UTF-8.
[[nodiscard]] inline NSString* toNSString(std::string_view text) {
    NSString* string = [[NSString alloc] initWithBytes:text.data()
                                                length:text.size()
                                              encoding:NSUTF8StringEncoding];
    return string ? string : @"";
}

[[nodiscard]] inline std::string toString(NSString* text) {
    const char* bytes = text.UTF8String;
    return bytes ? bytes : "";
}

[[nodiscard]] inline NSURL* toURL(const std::filesystem::path& path) {
    return [NSURL fileURLWithPath:toNSString(path.native())];
}

} // namespace quorvane
