// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
enum vtype { VNON, VREG, VDIR, VBLK, VCHR, VLNK, VSOCK, VFIFO, VBAD, VSTR, VCPLX };
