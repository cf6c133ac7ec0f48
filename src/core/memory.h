// Memory services of the library (internal, not exported) and the decision
// when a copy or fill bypasses the cache.
#pragma once

#include <cstdint>

#include "zvpj.h"

// Allocation through the core library. len below 1 gives null without asking it.
Zvp8u* zvpsMalloc_8u(int len);
// Passes the pointer on to zvpFree untested (null included).
void zvpsFree(void* ptr);

// Checked services: null pointer first, then the length.
ZvpStatus zvpsCopy_8u(const Zvp8u* pSrc, Zvp8u* pDst, int len);
ZvpStatus zvpsSet_8u(Zvp8u val, Zvp8u* pDst, int len);
ZvpStatus zvpsZero_8u(Zvp8u* pDst, int len);
ZvpStatus zvpsZero_16s(Zvp16s* pDst, int len);

// Workers: test nothing; callers pass known-good sizes (len >= 1).
void ownsCopy_8u(const Zvp8u* pSrc, Zvp8u* pDst, int len);
void ownsSet_8u(Zvp8u val, Zvp8u* pDst, int len);
void ownsZero_8u(Zvp8u* pDst, int len);

// Region copy of rowBytes per row (the worker of the 16s and 32f copies):
// one cache decision for the whole region.
void owniCopy8uas(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep, int rowBytes, int height);

namespace zvp {

// Size in bytes of the largest cache named by the processor's cache
// descriptors (CPUID leaf 2), or 0 when unknown. Asked anew on every call.
int cacheSizeByDescriptor();

// The descriptor walk on given CPUID results: vendor is the 12-byte vendor
// string of leaf 0, regs the four result registers (eax, ebx, ecx, edx) of leaf 2.
int cacheSizeFromDescriptors(const char vendor[12], const uint32_t regs[4]);

// Tests: make cacheSizeByDescriptor answer `bytes` (0 = unknown) instead of
// asking the processor; a negative value restores the processor's answer.
void setCacheSizeOverride(int bytes);

// Plain byte loops, the scalar twins of the copy and fill paths.
void copyBytesScalar(const Zvp8u* pSrc, Zvp8u* pDst, int64_t len);
void setBytesScalar(Zvp8u val, Zvp8u* pDst, int64_t len);

// The non-temporal paths (x86): copy in 256 KiB blocks after touching each
// block's source, fill with streaming stores; both end with a store fence.
void copyNonTemporal(const Zvp8u* pSrc, Zvp8u* pDst, int64_t len);
void setNonTemporal(Zvp8u val, Zvp8u* pDst, int64_t len);

}  // namespace zvp
