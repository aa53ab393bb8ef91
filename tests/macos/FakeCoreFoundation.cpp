#include <algorithm>
#include <set>
#include <typeinfo>

#include "tests/macos/FakeObjects.h"

namespace quorvane::fakes {

namespace {

// Made on first use, as constants are added during static initialization.
std::set<const void*>& living() {
    static std::set<const void*> objects;
    return objects;
}

template <typename Type>
Type* immortal(Type* object) {
    object->immortal = true;
    return object;
}

struct Truth final : Object {
    explicit Truth(bool truth) : value(truth) {}

    [[nodiscard]] std::string type() const override { return "CFBoolean"; }

    [[nodiscard]] std::string description() const override { return value ? "true" : "false"; }

    bool value;
};

String& constantString(const std::string& text) {
    // Never destroyed, like the constants in it.
    static auto& strings = *new std::map<std::string, String*>;
    String*& string = strings[text];
    if (!string)
        string = immortal(new String(text));
    return *string;
}

void retain(Object* object) {
    if (!object->immortal)
        ++object->retains;
}

void release(Object* object) {
    if (!object->immortal && --object->retains == 0)
        delete object;
}

} // namespace

Object::Object() {
    living().insert(this);
}

Object::~Object() {
    living().erase(this);
}

Object* find(const void* reference, const char* caller) {
    if (living().count(reference) == 0) {
        mistake(caller, "an object that is not there");
        return nullptr;
    }
    return const_cast<Object*>(static_cast<const Object*>(reference));
}

std::string describe(const void* reference) {
    if (!reference)
        return "null";
    return living().count(reference) != 0 ? static_cast<const Object*>(reference)->description()
                                          : "gone";
}

std::vector<std::string> leftOver() {
    std::vector<std::string> types;
    for (const void* reference : living()) {
        const auto* object = static_cast<const Object*>(reference);
        if (!object->immortal)
            types.push_back(object->type());
    }
    std::sort(types.begin(), types.end());
    return types;
}

Dictionary::~Dictionary() {
    for (const auto& [key, value] : entries) {
        release(key);
        release(value);
    }
}

std::string Dictionary::description() const {
    std::string text;
    for (const auto& [key, value] : entries)
        text += (text.empty() ? "" : ", ") + key->description() + ": " + value->description();
    return "{" + text + "}";
}

Object* Dictionary::find(const std::string& key) const {
    for (const auto& [name, value] : entries)
        if (name->description() == '"' + key + '"')
            return value;
    return nullptr;
}

Set::~Set() {
    for (Object* member : members)
        release(member);
}

RunLoopSource::~RunLoopSource() {
    release(port);
}

RunLoop& currentRunLoop() {
    static RunLoop& runLoop = *immortal(new RunLoop);
    return runLoop;
}

void dropSources(MachPort& port) {
    auto& sources = currentRunLoop().sources;
    const auto kept = std::stable_partition(sources.begin(), sources.end(), [&](const auto& entry) {
        return entry.first->port != &port;
    });
    const std::vector<std::pair<RunLoopSource*, std::string>> dropped(kept, sources.end());
    sources.erase(kept, sources.end());
    for (const auto& entry : dropped)
        release(entry.first);
}

} // namespace quorvane::fakes

using namespace quorvane::fakes;

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = reference<CFBooleanRef>(immortal(new Truth(true)));
const CFBooleanRef kCFBooleanFalse = reference<CFBooleanRef>(immortal(new Truth(false)));
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};
const CFRunLoopMode kCFRunLoopDefaultMode =
    reference<CFStringRef>(&constantString("kCFRunLoopDefaultMode"));
const CFRunLoopMode kCFRunLoopCommonModes =
    reference<CFStringRef>(&constantString("kCFRunLoopCommonModes"));

CFTypeRef CFRetain(CFTypeRef object) {
    if (auto* known = checked<Object>(object, "CFRetain"))
        retain(known);
    return object;
}

void CFRelease(CFTypeRef object) {
    if (auto* known = checked<Object>(object, "CFRelease"))
        release(known);
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    const auto* known = checked<Object>(object, "CFGetTypeID");
    return known ? typeid(*known).hash_code() : 0;
}

CFTypeID CFNumberGetTypeID() {
    return typeid(Number).hash_code();
}

CFStringRef __CFStringMakeConstantString(const char* text) {
    return reference<CFStringRef>(&constantString(text));
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, unsigned char) {
    if (encoding != kCFStringEncodingUTF8)
        mistake("CFStringCreateWithBytes", "not UTF-8");
    return reference<CFStringRef>(new String(std::string(bytes, bytes + numBytes)));
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    if (type != kCFNumberIntType)
        mistake("CFNumberCreate", "not an int");
    return reference<CFNumberRef>(new Number(*static_cast<const int*>(value)));
}

unsigned char CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    const auto* known = checked<Number>(number, "CFNumberGetValue");
    if (type != kCFNumberIntType)
        mistake("CFNumberGetValue", "not an int");
    if (known)
        *static_cast<int*>(value) = known->value;
    return known != nullptr;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex numValues, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks ||
        valueCallBacks != &kCFTypeDictionaryValueCallBacks)
        mistake("CFDictionaryCreate", "it would not retain what is in it");
    auto* dictionary = new Dictionary;
    for (CFIndex i = 0; i < numValues; ++i) {
        auto* key = checked<Object>(keys[i], "CFDictionaryCreate");
        auto* value = checked<Object>(values[i], "CFDictionaryCreate");
        if (!key || !value)
            continue;
        retain(key);
        retain(value);
        dictionary->entries.emplace_back(key, value);
    }
    return reference<CFDictionaryRef>(dictionary);
}

CFIndex CFSetGetCount(CFSetRef set) {
    const auto* known = checked<Set>(set, "CFSetGetCount");
    return known ? static_cast<CFIndex>(known->members.size()) : 0;
}

void CFSetGetValues(CFSetRef set, const void** values) {
    if (const auto* known = checked<Set>(set, "CFSetGetValues"))
        std::copy(known->members.begin(), known->members.end(), values);
}

CFRunLoopRef CFRunLoopGetCurrent() {
    return reference<CFRunLoopRef>(&currentRunLoop());
}

void CFRunLoopAddSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    auto* loop = checked<RunLoop>(runLoop, "CFRunLoopAddSource");
    auto* known = checked<RunLoopSource>(source, "CFRunLoopAddSource");
    call("CFRunLoopAddSource(" + describe(mode) + ")");
    if (!loop || !known)
        return;
    const std::pair<RunLoopSource*, std::string> entry(known, describe(mode));
    if (std::count(loop->sources.begin(), loop->sources.end(), entry) != 0)
        return;
    retain(known);
    loop->sources.push_back(entry);
}

void CFRunLoopRemoveSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    auto* loop = checked<RunLoop>(runLoop, "CFRunLoopRemoveSource");
    auto* known = checked<RunLoopSource>(source, "CFRunLoopRemoveSource");
    call("CFRunLoopRemoveSource(" + describe(mode) + ")");
    if (loop && std::erase(loop->sources, std::pair(known, describe(mode))) != 0)
        release(known);
}

} // extern "C"
