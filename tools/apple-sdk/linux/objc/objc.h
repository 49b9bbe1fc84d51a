// Declaration-only subset of the public API for running Objective-C on Linux; see ../../README.md.
#pragma once
#pragma clang system_header
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef struct objc_class *Class;
typedef struct objc_selector *SEL;
typedef struct objc_object { Class isa; } *id;
typedef id (*IMP)(id, SEL, ...);
typedef bool BOOL;
typedef long NSInteger;
typedef unsigned long NSUInteger;
#define NSIntegerMax INT64_MAX
#define NSUIntegerMax UINT64_MAX
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#define Nil nullptr

extern "C" {
id objc_msgSend(id, SEL, ...);
SEL sel_registerName(const char *name);
const char *sel_getName(SEL selector);
Class objc_getClass(const char *name);
}
