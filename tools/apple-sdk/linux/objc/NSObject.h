// Declaration-only subset of the public API for running Objective-C on Linux; see ../../README.md.
#pragma once
#pragma clang system_header
#include <objc/objc.h>

@class NSString;
@protocol NSObject
- (BOOL)isEqual:(id)object;
@property(readonly) NSUInteger hash;
@property(readonly) Class superclass;
- (Class)class;
- (instancetype)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isMemberOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol *)aProtocol;
- (BOOL)respondsToSelector:(SEL)aSelector;
- (id)performSelector:(SEL)aSelector;
- (id)performSelector:(SEL)aSelector withObject:(id)object;
@property(readonly, copy) NSString *description;
@property(readonly, copy) NSString *debugDescription;
@end
__attribute__((objc_root_class)) @interface NSObject <NSObject> { Class isa; }
+ (instancetype)alloc;
+ (instancetype)new;
- (instancetype)init;
- (void)dealloc;
- (id)copy;
- (id)mutableCopy;
+ (Class)class;
+ (Class)superclass;
+ (BOOL)instancesRespondToSelector:(SEL)aSelector;
@end
