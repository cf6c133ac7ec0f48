/*
 * zvpj.h - public interface of libzvpjp8.so.6.1, a library of image-coding
 * primitives (JPEG, JPEG 2000, HD Photo, TIFF rows, DXT/BC7 textures), and of
 * the core services of libzvpcore.so.6.1 that it relies on.
 *
 * Valid C11 and C++. Every function of libzvpjp8 but zvpjGetLibVersion
 * returns a ZvpStatus: 0 is success, negative values are errors, positive
 * values are warnings (the output is then complete). Arguments are tested
 * before any buffer is touched; the first failed test decides the status and
 * the output is then unchanged. A size, length or step of 0 is an error, not
 * a no-op.
 *
 * Conventions of names: zvpi + operation + standard + element types + layout.
 * Element types: 1u bit stream (bytes, most significant bit first), 8u, 16u,
 * 16s, 32s, 32f; a pair means source type then destination type. Layouts: C1
 * to C4 interleaved channels, P3/P4 arrays of plane pointers sharing one
 * step, R regions with a row step in bytes and a ZvpiSize, I in place.
 * Row steps are signed 32-bit distances in bytes between row starts, for all
 * element types. The library never tests that a step covers a row, and never
 * tests buffers for overlap.
 *
 * Stream positions (pSrcCurrPos, pDstCurrPos) are byte indices held in the
 * caller's variables; functions read them and advance them.
 */
#ifndef ZVPJ_H
#define ZVPJ_H

#include <stddef.h>
#include <stdint.h>

/* Marks the functions exported from libzvpjp8 (built with hidden visibility). */
#ifndef ZVPJ_API
#if defined(__GNUC__) || defined(__clang__)
#define ZVPJ_API __attribute__((visibility("default")))
#else
#define ZVPJ_API
#endif
#endif

/* Marks the functions exported from the core services library libzvpcore. */
#ifndef ZVPCORE_API
#if defined(__GNUC__) || defined(__clang__)
#define ZVPCORE_API __attribute__((visibility("default")))
#else
#define ZVPCORE_API
#endif
#endif

/* A compile-time assertion that works in C11 and in C++. */
#if defined(__cplusplus)
#define ZVPJ_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define ZVPJ_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================== */
/* Basic types                                                              */
/* ======================================================================== */

typedef uint8_t  Zvp8u;
typedef int8_t   Zvp8s;
typedef uint16_t Zvp16u;
typedef int16_t  Zvp16s;
typedef uint32_t Zvp32u;
typedef int32_t  Zvp32s;
typedef float    Zvp32f;
typedef uint64_t Zvp64u;
typedef int64_t  Zvp64s;
typedef double   Zvp64f;

ZVPJ_STATIC_ASSERT(sizeof(Zvp32f) == 4, "Zvp32f must be IEEE 754 single precision");
ZVPJ_STATIC_ASSERT(sizeof(Zvp64f) == 8, "Zvp64f must be IEEE 754 double precision");

/* ======================================================================== */
/* Status codes                                                             */
/* ======================================================================== */

/* The result of every exported function but zvpjGetLibVersion. */
typedef int32_t ZvpStatus;

enum ZvpStatusCode {
    zvpStatusOk               = 0,    /* success */
    zvpStatusDivideByZero     = 6,    /* warning: some divisor was zero; a quotient was still written */
    zvpStatusError            = -2,   /* a coefficient position or a run-and-size symbol fell outside its table */
    zvpStatusBadArgument      = -5,   /* a numeric argument is out of range (stream length or position, scan limits, successive-approximation bits, predictor, quality factor) */
    zvpStatusBadSize          = -6,   /* a width, height, length or count is below its minimum */
    zvpStatusRange            = -7,   /* a value's bit category exceeds 16 */
    zvpStatusNullPointer      = -8,   /* a required pointer is null; also a failed allocation in the Huffman families */
    zvpStatusOutOfMemory      = -9,   /* allocation failed (JPEG 2000 code-block records) */
    zvpStatusBadStep          = -14,  /* a row step is below its minimum */
    zvpStatusContextMismatch  = -17,  /* a state record does not open with its identifier */
    zvpStatusOutOfBuffer      = -62,  /* a JPEG source or destination buffer ended before the request was met */
    zvpStatusJpegRange        = -63,  /* a code word matched no table entry, bits were cut off by a pending marker, or a bit category exceeds what the coding allows */
    zvpStatusHuffmanTable     = -64,  /* a table specification is inconsistent, a symbol to be written has no code, or a code length cannot be limited */
    zvpStatusDamagedCodeBlock = -112, /* the code-block's segments proved damaged; further steps on the block fail alike */
    zvpStatusBadPassNumber    = -113, /* a coding pass number outside the passes that exist */
    zvpStatusUnderRun         = -124, /* a TIFF run needs more source or destination bytes than there are */
    zvpStatusNotAttached      = -180  /* a progressive code-block decoder step with no code block attached */
};

/* ======================================================================== */
/* Records                                                                  */
/* ======================================================================== */

/* Size of a region, passed by value. */
typedef struct ZvpiSize {
    Zvp32s width;   /* pixels per row */
    Zvp32s height;  /* rows */
} ZvpiSize;

/* A tile rectangle. Only the low bits of x and y matter: they give the phase
   (parity) of the tile's rows and columns; 0 means the first sample is a
   low-pass position. */
typedef struct ZvpiRect {
    Zvp32s x;
    Zvp32s y;
    Zvp32s width;
    Zvp32s height;
} ZvpiRect;

ZVPJ_STATIC_ASSERT(sizeof(ZvpiSize) == 8, "ZvpiSize is two 32-bit values");
ZVPJ_STATIC_ASSERT(sizeof(ZvpiRect) == 16, "ZvpiRect is four 32-bit values");

/* The version record of the library, constant data of the library. */
typedef struct ZvpLibraryVersion {
    Zvp32s major;         /* 6 */
    Zvp32s minor;         /* 1 */
    Zvp32s majorBuild;    /* 137 */
    Zvp32s build;         /* 823 */
    char targetCpu[4];    /* "p8" followed by two zero bytes */
    const char* name;     /* "libzvpjp8.so.6.1+" (AVX2 build) or "libzvpjp8.so.6.1" */
    const char* version;  /* "6.1 build 137.56" */
    const char* buildDate;/* "Mar 17 2010" */
} ZvpLibraryVersion;

ZVPJ_STATIC_ASSERT(offsetof(ZvpLibraryVersion, targetCpu) == 16, "version record layout");
ZVPJ_STATIC_ASSERT(offsetof(ZvpLibraryVersion, name) >= 20, "version record layout");

/*
 * Opaque state and table records. Their layouts belong to the library; a
 * caller allocates them with the sizes below (or the size queries, which
 * give the same values) in memory aligned to at least 8 bytes (as from malloc
 * or zvpMalloc), or lets an InitAlloc function allocate them. Huffman table
 * and state records hold no pointers and may be copied as plain bytes.
 */

/* Huffman decode table: 8-bit look-ahead plus canonical code walk. Read-only
   after initialisation; may be shared between threads. */
typedef struct ZvpiDecodeHuffmanSpec ZvpiDecodeHuffmanSpec;
#define ZVPJ_DECODE_HUFFMAN_SPEC_SIZE 1644

/* Huffman encode table: 256 code words indexed by symbol. Read-only after
   initialisation; may be shared between threads. */
typedef struct ZvpiEncodeHuffmanSpec ZvpiEncodeHuffmanSpec;
#define ZVPJ_ENCODE_HUFFMAN_SPEC_SIZE 1024

/* Huffman bit-stream state of a decoder: read-ahead bits and end-of-block
   run. One scan (or restart interval), one thread at a time. */
typedef struct ZvpiDecodeHuffmanState ZvpiDecodeHuffmanState;
#define ZVPJ_DECODE_HUFFMAN_STATE_SIZE 20

/* Huffman bit-stream state of an encoder: pending bits, end-of-block run and
   waiting correction bits. One scan (or restart interval), one thread at a
   time. Also serves the progressive AC statistics functions. */
typedef struct ZvpiEncodeHuffmanState ZvpiEncodeHuffmanState;
#define ZVPJ_ENCODE_HUFFMAN_STATE_SIZE 1044

/* Progressive JPEG 2000 code-block decoder state (identifier "PAMC"): a fixed
   part followed by the flag buffer of the block on a 32-byte boundary. Its
   size depends on the largest block it serves; see
   zvpiDecodeCBProgrGetStateSize_JPEG2K or ZVPJ_DECODE_CBPROGR_STATE_SIZE. */
typedef struct zvpiDecodeCBProgrState zvpiDecodeCBProgrState;
/* Bytes of the fixed part of the record. */
#define ZVPJ_DECODE_CBPROGR_FIXED_SIZE 356
/* Bytes a state buffer needs for blocks up to width x height (both >= 1):
   flag row step (4 * width + 8 rounded up to a multiple of 32) times
   ((height + 1) / 2 + 2) flag rows, plus 388. */
#define ZVPJ_DECODE_CBPROGR_STATE_SIZE(width, height) \
    (((4 * (width) + 8 + 31) & ~31) * (((height) + 1) / 2 + 2) + 388)

/* JPEG 2000 code-block encoder state (identifier "DSML"), allocated only by
   zvpiEncodeInitAlloc_JPEG2K, with its work record, symbol arrays and flag
   buffer. */
typedef struct zvpiEncodeState zvpiEncodeState;
/* Bytes of the state record itself (informative). */
#define ZVPJ_ENCODE_STATE_SIZE 916

/* ======================================================================== */
/* Constants                                                                */
/* ======================================================================== */

/*
 * Code-block style flag word of the JPEG 2000 code-block coders (argument
 * `flags`). The zvpCBStyle* flags are those of the code-block style of the
 * code stream; the zvpCBDecode* flags steer the decoder only.
 */
enum ZvpCodeBlockFlag {
    zvpCBStyleVertCausal    = 0x00001,  /* a sample in the first row of a stripe does not update the rows above it */
    zvpCBStyleBypass        = 0x00002,  /* planes below the fourth from the top code their first two passes raw */
    zvpCBStyleTermAll       = 0x00004,  /* every pass ends a code word segment */
    zvpCBStyleResetCtx      = 0x00008,  /* contexts return to their initial state after each pass */
    zvpCBStyleSegSymbol     = 0x00010,  /* each cleanup pass ends with the 4-bit segmentation symbol */
    zvpCBStyleLossless      = 0x00020,  /* encoder only: the lowest plane uses the lossless distortion tables */
    zvpCBDecodeConceal      = 0x10000,  /* decoder only: on damage, reduce the samples to the last good plane */
    zvpCBDecodeDstClean     = 0x20000,  /* decoder only: the destination is already zero; do not clear it */
    zvpCBDecodeKeepMidpoint = 0x40000,  /* decoder only: keep the reconstruction bits below the last plane */
    zvpCBDecodeFlagsClean   = 0x80000,  /* decoder only: the flag buffer is already zero; do not clear it */
    zvpCBDecodePredTerm     = 0x100000  /* decoder only: check predictable termination at each MQ segment end */
};

/*
 * Termination of MQ code word segments in the code-block encoder (argument
 * `mqTermType` of zvpiEncodeLoadCodeBlock_JPEG2K_32s_C1R). Any value other
 * than 1 and 2 selects mqTermSimple.
 */
enum ZvpMQTermType {
    mqTermSimple      = 0,  /* the usual flush with 1 bits */
    mqTermNearOptimal = 1,  /* the shortest code word that any decoder fill of 1 bits reads correctly */
    mqTermPredictable = 2   /* predictable termination, checkable by the decoder */
};

/*
 * The `subband` argument of the code-block coders picks the zero-coding
 * context table by the position of the subband in the order LL, LH, HL, HH:
 * 2 (HL) and 3 (HH) have tables of their own; every other value, 0 (LL) and
 * 1 (LH) in particular, selects the shared one.
 */

/* ======================================================================== */
/* Version record                                                           */
/* ======================================================================== */

/* Returns the library's constant version record, never null; nothing is
   allocated. The "+" record is returned when the processor has AVX2. */
ZVPJ_API const ZvpLibraryVersion* zvpjGetLibVersion(void);

/* ======================================================================== */
/* Level shift                                                              */
/* ======================================================================== */

/* dst = src - 128 for every sample of the region (exact, -128..127).
   zvpStatusNullPointer, zvpStatusBadStep (step < 1), zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiSub128_JPEG_8u16s_C1R(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst, int dstStep,
                                             ZvpiSize roiSize);

/* dst = clamp(src + 128, 0, 255) for every sample of the region.
   zvpStatusNullPointer, zvpStatusBadStep (step < 1), zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiAdd128_JPEG_16s8u_C1R(const Zvp16s* pSrc, int srcStep, Zvp8u* pDst, int dstStep,
                                             ZvpiSize roiSize);

/* ======================================================================== */
/* Huffman table specifications                                             */
/*                                                                          */
/* pListBits: 16 counts, pListBits[i] = number of codes of length i + 1.    */
/* pListVals: the symbols in code order (as in a DHT segment).             */
/* ======================================================================== */

/* Writes the size of a ZvpiDecodeHuffmanSpec (1644) to *pSize.
   zvpStatusNullPointer for a null pSize. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);

/* Builds a decode table in the caller's record from the DHT lists.
   zvpStatusNullPointer; zvpStatusHuffmanTable for an inconsistent table
   (the record is then partly filled). */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecInit_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                     ZvpiDecodeHuffmanSpec* pDecHuffSpec);

/* Allocates a decode table, builds it and stores its pointer in *ppDecHuffSpec.
   zvpStatusNullPointer (also when allocation fails); zvpStatusHuffmanTable,
   in which case the record is still stored and must be freed by the caller. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                          ZvpiDecodeHuffmanSpec** ppDecHuffSpec);

/* Frees a decode table from zvpiDecodeHuffmanSpecInitAlloc_JPEG_8u.
   zvpStatusNullPointer for a null record. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanSpecFree_JPEG_8u(ZvpiDecodeHuffmanSpec* pDecHuffSpec);

/* Writes the size of a ZvpiEncodeHuffmanSpec (1024) to *pSize.
   zvpStatusNullPointer for a null pSize. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);

/* Builds an encode table in the caller's record from the DHT lists.
   zvpStatusNullPointer; zvpStatusHuffmanTable for an over-full table or a
   code of all ones. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecInit_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                     ZvpiEncodeHuffmanSpec* pEncHuffSpec);

/* Allocates an encode table, builds it and stores its pointer in *ppEncHuffSpec.
   zvpStatusNullPointer (also when allocation fails); zvpStatusHuffmanTable,
   in which case the record is still stored and must be freed by the caller. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u(const Zvp8u* pListBits, const Zvp8u* pListVals,
                                                          ZvpiEncodeHuffmanSpec** ppEncHuffSpec);

/* Frees an encode table from zvpiEncodeHuffmanSpecInitAlloc_JPEG_8u.
   zvpStatusNullPointer for a null record. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanSpecFree_JPEG_8u(ZvpiEncodeHuffmanSpec* pEncHuffSpec);

/* Builds optimised DHT lists from symbol frequencies. pStatistics must have
   257 readable 32-bit entries (1028 bytes); pListBits receives 16 counts and
   pListVals up to 256 symbols. zvpStatusNullPointer; zvpStatusHuffmanTable
   when a code length cannot be limited. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanRawTableInit_JPEG_8u(const Zvp32s* pStatistics, Zvp8u* pListBits,
                                                         Zvp8u* pListVals);

/* ======================================================================== */
/* Huffman bit-stream state                                                 */
/* ======================================================================== */

/* Writes the size of a ZvpiDecodeHuffmanState (20) to *pSize.
   zvpStatusNullPointer for a null pSize. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);

/* Clears a decoder state for a new scan or restart interval.
   zvpStatusNullPointer for a null record. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateInit_JPEG_8u(ZvpiDecodeHuffmanState* pDecHuffState);

/* Allocates a cleared decoder state and stores its pointer in *ppDecHuffState.
   zvpStatusNullPointer for a null argument and for a failed allocation. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateInitAlloc_JPEG_8u(ZvpiDecodeHuffmanState** ppDecHuffState);

/* Frees a decoder state from zvpiDecodeHuffmanStateInitAlloc_JPEG_8u.
   zvpStatusNullPointer for a null record. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanStateFree_JPEG_8u(ZvpiDecodeHuffmanState* pDecHuffState);

/* Writes the size of a ZvpiEncodeHuffmanState (1044) to *pSize.
   zvpStatusNullPointer for a null pSize. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);

/* Clears an encoder state for a new scan or restart interval (pending bits are
   dropped). zvpStatusNullPointer for a null record. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateInit_JPEG_8u(ZvpiEncodeHuffmanState* pEncHuffState);

/* Allocates a cleared encoder state and stores its pointer in *ppEncHuffState.
   zvpStatusNullPointer for a null argument and for a failed allocation. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateInitAlloc_JPEG_8u(ZvpiEncodeHuffmanState** ppEncHuffState);

/* Frees an encoder state from zvpiEncodeHuffmanStateInitAlloc_JPEG_8u.
   zvpStatusNullPointer for a null record. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanStateFree_JPEG_8u(ZvpiEncodeHuffmanState* pEncHuffState);

/* ======================================================================== */
/* Sequential block coding                                                  */
/*                                                                          */
/* Blocks are 64 Zvp16s in natural order. *pLastDC is the caller's DC        */
/* predictor. *pMarker is the caller's marker variable: 0 means no marker   */
/* met; the library stores a marker's second byte there and never clears    */
/* it. bFlush nonzero: encode nothing, pad pending bits with 1 bits, write   */
/* them out and reset the state.                                            */
/* ======================================================================== */

/* Decodes one baseline block from pSrc[*pSrcCurrPos ..] (srcLenBytes bytes in
   all) into pDst, advancing *pSrcCurrPos. zvpStatusNullPointer;
   zvpStatusBadArgument for srcLenBytes < 0; zvpStatusOutOfBuffer,
   zvpStatusJpegRange (bad code, or marker with too few bits), zvpStatusError
   (coefficient position out of range). */
ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                      Zvp16s* pDst, Zvp16s* pLastDC, int* pMarker,
                                                      const ZvpiDecodeHuffmanSpec* pDcTable,
                                                      const ZvpiDecodeHuffmanSpec* pAcTable,
                                                      ZvpiDecodeHuffmanState* pDecHuffState);

/* Decodes one baseline block with no state record and no length: *pSrcBitsLen
   is the bit position, *pPrefetchedBits / *pNumValidPrefetchedBits the caller's
   read-ahead bits. The data and any marker must lie in the buffer.
   zvpStatusNullPointer; zvpStatusBadArgument for a negative position or bit
   count; zvpStatusOutOfBuffer, zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Zvp8u* pSrc, int* pSrcBitsLen, Zvp16s* pDst,
                                                             Zvp16s* pLastDC, int* pMarker,
                                                             Zvp32u* pPrefetchedBits,
                                                             int* pNumValidPrefetchedBits,
                                                             const ZvpiDecodeHuffmanSpec* pDcTable,
                                                             const ZvpiDecodeHuffmanSpec* pAcTable);

/* Encodes one baseline block (or flushes, see bFlush) into pDst of dstLenBytes
   bytes at *pDstCurrPos, advancing it. zvpStatusNullPointer; zvpStatusBadSize
   for dstLenBytes < 1; zvpStatusOutOfBuffer; zvpStatusHuffmanTable for a
   symbol without a code. */
ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                      int* pDstCurrPos, Zvp16s* pLastDC,
                                                      const ZvpiEncodeHuffmanSpec* pDcTable,
                                                      const ZvpiEncodeHuffmanSpec* pAcTable,
                                                      ZvpiEncodeHuffmanState* pEncHuffState, int bFlush);

/* Encodes one baseline block with no state and no length at the bit position
   *pDstBitsLen, continuing the partial last byte in pDst. Needs 8 bytes of room
   beyond the output; there is no flush. zvpStatusNullPointer only. */
ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int* pDstBitsLen,
                                                             Zvp16s* pLastDC,
                                                             const ZvpiEncodeHuffmanSpec* pDcTable,
                                                             const ZvpiEncodeHuffmanSpec* pAcTable);

/* ======================================================================== */
/* Huffman symbol statistics                                                */
/*                                                                          */
/* Statistics arrays hold one 32-bit counter per symbol (256 entries; 257   */
/* readable entries when handed to zvpiEncodeHuffmanRawTableInit_JPEG_8u),  */
/* zeroed by the caller and only ever incremented.                          */
/* ======================================================================== */

/* Counts the category of one lossless difference *pSrc.
   zvpStatusNullPointer; zvpStatusRange for a category above 16. */
ZVPJ_API ZvpStatus zvpiGetHuffmanStatisticsOne_JPEG_16s_C1(const Zvp16s* pSrc, Zvp32s* pStatistics);

/* Counts the DC and AC symbols of one baseline block, updating *pLastDC.
   zvpStatusNullPointer; zvpStatusJpegRange for a DC category above 15 or an
   AC category above 14. */
ZVPJ_API ZvpStatus zvpiGetHuffmanStatistics8x8_JPEG_16s_C1(const Zvp16s* pSrc, Zvp32s* pDcStatistics,
                                                           Zvp32s* pAcStatistics, Zvp16s* pLastDC);

/* Counts the DC symbol of one block of a progressive first DC scan.
   zvpStatusNullPointer; zvpStatusBadArgument for Al outside 0..13;
   zvpStatusJpegRange for a category above 11. */
ZVPJ_API ZvpStatus zvpiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const Zvp16s* pSrc, Zvp32s* pDcStatistics,
                                                                   Zvp16s* pLastDC, int Al);

/* Counts the AC symbols of one block of a progressive first AC scan; the
   end-of-block run lives in pEncHuffState. bFlush nonzero counts the pending
   run and clears the record. zvpStatusNullPointer; zvpStatusBadArgument for
   Ss, Se, Al; zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const Zvp16s* pSrc, Zvp32s* pAcStatistics,
                                                                   int Ss, int Se, int Al,
                                                                   ZvpiEncodeHuffmanState* pEncHuffState,
                                                                   int bFlush);

/* Counts the AC symbols of one block of a progressive AC refinement scan; run
   and correction count live in pEncHuffState. bFlush as above.
   zvpStatusNullPointer; zvpStatusBadArgument for Ss, Se, Al; zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const Zvp16s* pSrc, Zvp32s* pAcStatistics,
                                                                    int Ss, int Se, int Al,
                                                                    ZvpiEncodeHuffmanState* pEncHuffState,
                                                                    int bFlush);

/* ======================================================================== */
/* Progressive block coding                                                 */
/*                                                                          */
/* Ss, Se: first and last zig-zag position of the band (1..63); Al: point   */
/* transform (0..13). Blocks stay in the caller's memory across scans and   */
/* are never cleared by these functions.                                    */
/* ======================================================================== */

/* Decodes the DC coefficient of one block, first DC scan: pDst[0] =
   *pLastDC << Al. zvpStatusNullPointer; zvpStatusBadSize for srcLenBytes < 1;
   zvpStatusBadArgument for Al; zvpStatusOutOfBuffer, zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes,
                                                              int* pSrcCurrPos, Zvp16s* pDst, Zvp16s* pLastDC,
                                                              int* pMarker, int Al,
                                                              const ZvpiDecodeHuffmanSpec* pDcTable,
                                                              ZvpiDecodeHuffmanState* pDecHuffState);

/* Decodes one DC refinement bit into bit Al of pDst[0].
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument for Al;
   zvpStatusOutOfBuffer, zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes,
                                                               int* pSrcCurrPos, Zvp16s* pDst, int* pMarker,
                                                               int Al, ZvpiDecodeHuffmanState* pDecHuffState);

/* Decodes the band Ss..Se of one block, first AC scan (end-of-block runs kept
   in the state). zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument
   for Ss, Se, Al; zvpStatusOutOfBuffer, zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes,
                                                              int* pSrcCurrPos, Zvp16s* pDst, int* pMarker,
                                                              int Ss, int Se, int Al,
                                                              const ZvpiDecodeHuffmanSpec* pAcTable,
                                                              ZvpiDecodeHuffmanState* pDecHuffState);

/* Decodes the band Ss..Se of one block, AC refinement scan.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument for Ss, Se, Al;
   zvpStatusOutOfBuffer, zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes,
                                                               int* pSrcCurrPos, Zvp16s* pDst, int* pMarker,
                                                               int Ss, int Se, int Al,
                                                               const ZvpiDecodeHuffmanSpec* pAcTable,
                                                               ZvpiDecodeHuffmanState* pDecHuffState);

/* Encodes the DC coefficient of one block, first DC scan (or flushes).
   zvpStatusNullPointer; zvpStatusBadSize for dstLenBytes < 1;
   zvpStatusBadArgument for Al; zvpStatusJpegRange for a category above 11;
   zvpStatusOutOfBuffer; zvpStatusHuffmanTable. */
ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                              int* pDstCurrPos, Zvp16s* pLastDC, int Al,
                                                              const ZvpiEncodeHuffmanSpec* pDcTable,
                                                              ZvpiEncodeHuffmanState* pEncHuffState,
                                                              int bFlush);

/* Encodes one DC refinement bit, bit Al of pSrc[0] (or flushes).
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument for Al;
   zvpStatusOutOfBuffer. */
ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                               int* pDstCurrPos, int Al,
                                                               ZvpiEncodeHuffmanState* pEncHuffState,
                                                               int bFlush);

/* Encodes the band Ss..Se of one block, first AC scan (or flushes the pending
   end-of-block run; the flush needs pAcTable). zvpStatusNullPointer;
   zvpStatusBadSize; zvpStatusBadArgument for Ss, Se, Al; zvpStatusJpegRange,
   zvpStatusError (symbol above 256), zvpStatusHuffmanTable, zvpStatusOutOfBuffer. */
ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                              int* pDstCurrPos, int Ss, int Se, int Al,
                                                              const ZvpiEncodeHuffmanSpec* pAcTable,
                                                              ZvpiEncodeHuffmanState* pEncHuffState,
                                                              int bFlush);

/* Encodes the band Ss..Se of one block, AC refinement scan (or flushes run and
   correction bits). zvpStatusNullPointer; zvpStatusBadSize;
   zvpStatusBadArgument for Ss, Se, Al; zvpStatusJpegRange,
   zvpStatusHuffmanTable, zvpStatusOutOfBuffer. */
ZVPJ_API ZvpStatus zvpiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                               int* pDstCurrPos, int Ss, int Se, int Al,
                                                               const ZvpiEncodeHuffmanSpec* pAcTable,
                                                               ZvpiEncodeHuffmanState* pEncHuffState,
                                                               int bFlush);

/* ======================================================================== */
/* Lossless row coding and prediction                                       */
/*                                                                          */
/* Samples and differences are 16-bit, arithmetic wraps at 16 bits.         */
/* predictor: 1 Ra, 2 Rb, 3 Rc, 4 Ra+Rb-Rc, 5 Ra+((Rb-Rc)>>1),              */
/* 6 Rb+((Ra-Rc)>>1), 7 (Ra+Rb)>>1. P: sample precision, Pt: point transform.*/
/* ======================================================================== */

/* Differences of the first row of a scan (predictor 1, started by
   1 << (P - Pt - 1)). zvpStatusNullPointer; zvpStatusBadSize for width < 1;
   zvpStatusBadArgument for P outside 2..16 or Pt < 0. */
ZVPJ_API ZvpStatus zvpiDiffPredFirstRow_JPEG_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst, int width, int P, int Pt);

/* Differences of a row against the predictor from pPrevRow (samples above).
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument for a predictor
   outside 1..7. */
ZVPJ_API ZvpStatus zvpiDiffPredRow_JPEG_16s_C1(const Zvp16s* pSrc, const Zvp16s* pPrevRow, Zvp16s* pDst,
                                               int width, int predictor);

/* Samples of the first row of a scan from its differences.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument for P or Pt. */
ZVPJ_API ZvpStatus zvpiReconstructPredFirstRow_JPEG_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst, int width, int P,
                                                           int Pt);

/* Samples of a row from its differences and the reconstructed row above.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusBadArgument for a predictor
   outside 1..7. */
ZVPJ_API ZvpStatus zvpiReconstructPredRow_JPEG_16s_C1(const Zvp16s* pSrc, const Zvp16s* pPrevRow, Zvp16s* pDst,
                                                      int width, int predictor);

/* Encodes one lossless difference *pSrc (or flushes).
   zvpStatusNullPointer; zvpStatusBadSize for dstLenBytes < 1;
   zvpStatusOutOfBuffer; zvpStatusHuffmanTable. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanOne_JPEG_16s1u_C1(const Zvp16s* pSrc, Zvp8u* pDst, int dstLenBytes,
                                                      int* pDstCurrPos, const ZvpiEncodeHuffmanSpec* pEncHuffSpec,
                                                      ZvpiEncodeHuffmanState* pEncHuffState, int bFlush);

/* Encodes one interleaved row of nCols columns of nComps components (at most
   4 are used), column by column, each component with its own table (or
   flushes). ppSrc and ppEncHuffSpec hold one entry per used component.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusOutOfBuffer;
   zvpStatusHuffmanTable. */
ZVPJ_API ZvpStatus zvpiEncodeHuffmanRow_JPEG_16s1u_P4C1(const Zvp16s* const ppSrc[], int nCols, int nComps,
                                                        Zvp8u* pDst, int dstLenBytes, int* pDstCurrPos,
                                                        const ZvpiEncodeHuffmanSpec* const ppEncHuffSpec[],
                                                        ZvpiEncodeHuffmanState* pEncHuffState, int bFlush);

/* Decodes one lossless difference into *pDst.
   zvpStatusNullPointer; zvpStatusBadSize for srcLenBytes < 1;
   zvpStatusOutOfBuffer, zvpStatusJpegRange. */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanOne_JPEG_1u16s_C1(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                      Zvp16s* pDst, int* pMarker,
                                                      const ZvpiDecodeHuffmanSpec* pDecHuffSpec,
                                                      ZvpiDecodeHuffmanState* pDecHuffState);

/* Decodes one interleaved row of nCols columns of nComps components (at most
   4 are used) into the component rows ppDst, each with its own table.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusOutOfBuffer,
   zvpStatusJpegRange (the row stands as far as it got). */
ZVPJ_API ZvpStatus zvpiDecodeHuffmanRow_JPEG_1u16s_C1P4(const Zvp8u* pSrc, int srcLenBytes, int* pSrcCurrPos,
                                                        Zvp16s* const ppDst[], int nCols, int nComps,
                                                        int* pMarker,
                                                        const ZvpiDecodeHuffmanSpec* const ppDecHuffSpec[],
                                                        ZvpiDecodeHuffmanState* pDecHuffState);

/* ======================================================================== */
/* Quantisation tables and zig-zag                                          */
/*                                                                          */
/* Raw table: 64 bytes in zig-zag order (DQT form). pQuantFwdTable,         */
/* pQuantInvTable: 64 Zvp16u in natural order.                              */
/* ======================================================================== */

/* Scales a base raw table in place by a quality factor (50 leaves it as it
   is; entries are clamped to 1..255). zvpStatusNullPointer;
   zvpStatusBadArgument for qualityFactor < 1. */
ZVPJ_API ZvpStatus zvpiQuantFwdRawTableInit_JPEG_8u(Zvp8u* pQuantRawTable, int qualityFactor);

/* Builds the forward table round(32768 / q) in natural order.
   zvpStatusNullPointer; zvpStatusDivideByZero (warning) for a zero entry,
   which gives 65535. */
ZVPJ_API ZvpStatus zvpiQuantFwdTableInit_JPEG_8u16u(const Zvp8u* pQuantRawTable, Zvp16u* pQuantFwdTable);

/* Builds the inverse table (q in natural order). zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiQuantInvTableInit_JPEG_8u16u(const Zvp8u* pQuantRawTable, Zvp16u* pQuantInvTable);

/* Quantises one block in place with a forward table. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiQuantFwd8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantFwdTable);

/* Dequantises one block in place (low 16 bits of x * q). zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiQuantInv8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantInvTable);

/* Unfolds a block from zig-zag order (pSrc) to natural order (pDst); the two
   must not overlap. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiZigzagInv8x8_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst);

/* ======================================================================== */
/* Block DCT                                                                */
/*                                                                          */
/* Coefficient blocks: 64 Zvp16s, natural order, any alignment. LS members  */
/* include the level shift (128 for 8-bit, 2048 for 12-bit samples). The    */
/* 12-bit members take tables of 64 Zvp32f. Failures: zvpStatusNullPointer  */
/* and, where a step exists, zvpStatusBadStep (step < 1).                   */
/* ======================================================================== */

/* Level shift, forward DCT and quantisation of an 8x8 block of 8-bit samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Zvp8u* pSrc, int srcStep, Zvp16s* pDst,
                                                       const Zvp16u* pQuantFwdTable);

/* Forward DCT and quantisation of a block of level-shifted samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8_JPEG_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pQuantFwdTable);

/* Forward DCT and quantisation of a block in place. */
ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantFwdTable);

/* Level shift by 2048, float forward DCT and quantisation of 12-bit samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const Zvp16u* pSrc, int srcStep, Zvp16s* pDst,
                                                        const Zvp32f* pQuantFwdTable);

/* Dequantisation, inverse DCT, level shift and clip to 8-bit samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                       const Zvp16u* pQuantInvTable);

/* Dequantisation and inverse DCT of a block. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8_JPEG_16s_C1(const Zvp16s* pSrc, Zvp16s* pDst, const Zvp16u* pQuantInvTable);

/* Dequantisation and inverse DCT of a block in place. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8_JPEG_16s_C1I(Zvp16s* pSrcDst, const Zvp16u* pQuantInvTable);

/* Inverse of a DC-only block to 8x8 samples (truncating shortcut). */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                           const Zvp16u* pQuantInvTable);

/* Inverse of a block whose nonzero coefficients lie in the top-left 2x2, to
   8x8 samples; other coefficients are ignored. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                           const Zvp16u* pQuantInvTable);

/* Inverse of a block whose nonzero coefficients lie in the top-left 4x4, to
   8x8 samples; other coefficients are ignored. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                           const Zvp16u* pQuantInvTable);

/* Downscaling inverse: an 8x8 coefficient block to 2 rows of 2 samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                            const Zvp16u* pQuantInvTable);

/* Downscaling inverse: an 8x8 coefficient block to 4 rows of 4 samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep,
                                                            const Zvp16u* pQuantInvTable);

/* Dequantisation, float inverse DCT, level shift by 2048 and limit to 0..4095
   for 12-bit samples. */
ZVPJ_API ZvpStatus zvpiDCTQuantInv8x8LS_JPEG_16s16u_C1R(const Zvp16s* pSrc, Zvp16u* pDst, int dstStep,
                                                        const Zvp32f* pQuantInvTable);

/* Inverse DCT of a dequantised block, add `level` (wrapping), saturate to
   0..255 and, unless clipMin is 0 and clipMax 255, limit to clipMin..clipMax. */
ZVPJ_API ZvpStatus zvpiDCT8x8InvLSClip_16s8u_C1R(const Zvp16s* pSrc, Zvp8u* pDst, int dstStep, Zvp16s level,
                                                 Zvp8u clipMin, Zvp8u clipMax);

/* ======================================================================== */
/* Colour conversion on planes                                              */
/*                                                                          */
/* Source first, destination second, a step after each, roiSize last. A     */
/* plane set is an array of 3 or 4 pointers sharing one step. Failures:     */
/* zvpStatusNullPointer (also a null plane), zvpStatusBadStep (step < 1),   */
/* zvpStatusBadSize. A pixel's result may depend by one level on its column */
/* (fast groups and row tail use different arithmetic).                     */
/* ======================================================================== */

/* YCbCr planes to RGB planes. */
ZVPJ_API ZvpStatus zvpiYCbCrToRGB_JPEG_8u_P3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* const pDst[3],
                                              int dstStep, ZvpiSize roiSize);

/* YCbCr planes to interleaved RGB. */
ZVPJ_API ZvpStatus zvpiYCbCrToRGB_JPEG_8u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst,
                                                int dstStep, ZvpiSize roiSize);

/* YCbCr planes to interleaved BGR. */
ZVPJ_API ZvpStatus zvpiYCbCrToBGR_JPEG_8u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst,
                                                int dstStep, ZvpiSize roiSize);

/* YCbCr planes to packed RGB555 pixels. */
ZVPJ_API ZvpStatus zvpiYCbCrToRGB555_JPEG_8u16u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp16u* pDst,
                                                      int dstStep, ZvpiSize roiSize);

/* YCbCr planes to packed BGR555 pixels. */
ZVPJ_API ZvpStatus zvpiYCbCrToBGR555_JPEG_8u16u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp16u* pDst,
                                                      int dstStep, ZvpiSize roiSize);

/* YCbCr planes to packed RGB565 pixels. */
ZVPJ_API ZvpStatus zvpiYCbCrToRGB565_JPEG_8u16u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp16u* pDst,
                                                      int dstStep, ZvpiSize roiSize);

/* YCbCr planes to packed BGR565 pixels. */
ZVPJ_API ZvpStatus zvpiYCbCrToBGR565_JPEG_8u16u_P3C3R(const Zvp8u* const pSrc[3], int srcStep, Zvp16u* pDst,
                                                      int dstStep, ZvpiSize roiSize);

/* YCCK planes to CMYK planes (K copied). */
ZVPJ_API ZvpStatus zvpiYCCKToCMYK_JPEG_8u_P4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* const pDst[4],
                                              int dstStep, ZvpiSize roiSize);

/* YCCK planes to interleaved CMYK. */
ZVPJ_API ZvpStatus zvpiYCCKToCMYK_JPEG_8u_P4C4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* pDst,
                                                int dstStep, ZvpiSize roiSize);

/* Interleaved 4:2:2 (Y Cb Y Cr bytes) to interleaved RGB. */
ZVPJ_API ZvpStatus zvpiYCbCr422ToRGB_JPEG_8u_C2C3R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep,
                                                   ZvpiSize roiSize);

/* RGB planes to grey. */
ZVPJ_API ZvpStatus zvpiRGBToY_JPEG_8u_P3C1R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* pDst, int dstStep,
                                            ZvpiSize roiSize);

/* Interleaved RGB to grey. */
ZVPJ_API ZvpStatus zvpiRGBToY_JPEG_8u_C3C1R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep,
                                            ZvpiSize roiSize);

/* Interleaved BGR to grey. */
ZVPJ_API ZvpStatus zvpiBGRToY_JPEG_8u_C3C1R(const Zvp8u* pSrc, int srcStep, Zvp8u* pDst, int dstStep,
                                            ZvpiSize roiSize);

/* RGB planes to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiRGBToYCbCr_JPEG_8u_P3R(const Zvp8u* const pSrc[3], int srcStep, Zvp8u* const pDst[3],
                                              int dstStep, ZvpiSize roiSize);

/* Interleaved RGB to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiRGBToYCbCr_JPEG_8u_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[3],
                                                int dstStep, ZvpiSize roiSize);

/* Interleaved BGR to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiBGRToYCbCr_JPEG_8u_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[3],
                                                int dstStep, ZvpiSize roiSize);

/* CMYK planes to YCCK planes (K copied). */
ZVPJ_API ZvpStatus zvpiCMYKToYCCK_JPEG_8u_P4R(const Zvp8u* const pSrc[4], int srcStep, Zvp8u* const pDst[4],
                                              int dstStep, ZvpiSize roiSize);

/* Interleaved CMYK to YCCK planes. */
ZVPJ_API ZvpStatus zvpiCMYKToYCCK_JPEG_8u_C4P4R(const Zvp8u* pSrc, int srcStep, Zvp8u* const pDst[4],
                                                int dstStep, ZvpiSize roiSize);

/* Packed RGB555 pixels to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiRGB555ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3],
                                                      int dstStep, ZvpiSize roiSize);

/* Packed BGR555 pixels to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiBGR555ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3],
                                                      int dstStep, ZvpiSize roiSize);

/* Packed RGB565 pixels to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiRGB565ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3],
                                                      int dstStep, ZvpiSize roiSize);

/* Packed BGR565 pixels to YCbCr planes. */
ZVPJ_API ZvpStatus zvpiBGR565ToYCbCr_JPEG_16u8u_C3P3R(const Zvp16u* pSrc, int srcStep, Zvp8u* const pDst[3],
                                                      int dstStep, ZvpiSize roiSize);

/* ======================================================================== */
/* Chroma sampling                                                          */
/*                                                                          */
/* Region members: box filter down, triangle filter up; the loops run over  */
/* the destination size; up-sampling reads one sample (and, H2V2, one row)  */
/* beyond each end of the source, which the caller keeps valid. Failures in */
/* order: pSrc null, srcStep < 1, source size < 1, pDst null, dstStep < 1,  */
/* destination size < 1. Row members treat one row (or a pair) and its      */
/* ends: zvpStatusNullPointer, zvpStatusBadSize for srcWidth < 1.           */
/* ======================================================================== */

/* Halves a plane horizontally: (a + b + 1) >> 1. */
ZVPJ_API ZvpStatus zvpiSampleDownH2V1_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                  Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize);

/* Halves a plane in both directions: (a + b + c + d + 3) >> 2. */
ZVPJ_API ZvpStatus zvpiSampleDownH2V2_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                  Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize);

/* Doubles a plane horizontally with the triangle filter. */
ZVPJ_API ZvpStatus zvpiSampleUpH2V1_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize);

/* Doubles a plane in both directions with the triangle filter. */
ZVPJ_API ZvpStatus zvpiSampleUpH2V2_JPEG_8u_C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize srcRoiSize,
                                                Zvp8u* pDst, int dstStep, ZvpiSize dstRoiSize);

/* Halves one row (srcWidth even) with alternating rounding bias. */
ZVPJ_API ZvpStatus zvpiSampleDownRowH2V1_Box_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst);

/* Halves a pair of rows into one (srcWidth even) with alternating bias. */
ZVPJ_API ZvpStatus zvpiSampleDownRowH2V2_Box_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2, int srcWidth,
                                                        Zvp8u* pDst);

/* Doubles one row of srcWidth (at least 2) samples into 2 * srcWidth. */
ZVPJ_API ZvpStatus zvpiSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Zvp8u* pSrc, int srcWidth, Zvp8u* pDst);

/* Doubles a row horizontally and vertically: pSrc1 the nearer source row,
   pSrc2 the farther one; srcWidth at least 2. */
ZVPJ_API ZvpStatus zvpiSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Zvp8u* pSrc1, const Zvp8u* pSrc2, int srcWidth,
                                                           Zvp8u* pDst);

/* ======================================================================== */
/* MCU functions                                                            */
/*                                                                          */
/* One call converts exactly one MCU between pixels and level-shifted       */
/* blocks. pSrcMCU / pDstMCU: 3 (YCCK: 4) pointers, each to a run of blocks:*/
/* 444 (8x8 pixels) 1 Y block; 422 (16x8) 2 Y blocks left, right; 411       */
/* (16x16) 4 Y blocks top left, top right, bottom left, bottom right; one   */
/* block per chroma component; K as Y. Block alignment can select a         */
/* different code path with results differing by one level. Failures:       */
/* zvpStatusNullPointer (also a null block pointer), zvpStatusBadStep.      */
/* ======================================================================== */

/* Y Cb Cr blocks to interleaved RGB, 4:4:4. */
ZVPJ_API ZvpStatus zvpiYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);
/* Y Cb Cr blocks to interleaved RGB, 4:2:2. */
ZVPJ_API ZvpStatus zvpiYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);
/* Y Cb Cr blocks to interleaved RGB, 4:1:1 (4:2:0). */
ZVPJ_API ZvpStatus zvpiYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);

/* Y Cb Cr blocks to interleaved BGR, 4:4:4. */
ZVPJ_API ZvpStatus zvpiYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);
/* Y Cb Cr blocks to interleaved BGR, 4:2:2. */
ZVPJ_API ZvpStatus zvpiYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);
/* Y Cb Cr blocks to interleaved BGR, 4:1:1. */
ZVPJ_API ZvpStatus zvpiYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);

/* Y Cb Cr K blocks to interleaved CMYK, 4:4:4. */
ZVPJ_API ZvpStatus zvpiYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const Zvp16s* const pSrcMCU[4], Zvp8u* pDst, int dstStep);
/* Y Cb Cr K blocks to interleaved CMYK, 4:2:2. */
ZVPJ_API ZvpStatus zvpiYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const Zvp16s* const pSrcMCU[4], Zvp8u* pDst, int dstStep);
/* Y Cb Cr K blocks to interleaved CMYK, 4:1:1. */
ZVPJ_API ZvpStatus zvpiYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const Zvp16s* const pSrcMCU[4], Zvp8u* pDst, int dstStep);

/* Y Cb Cr blocks to packed BGR555 pixels, 4:4:4. */
ZVPJ_API ZvpStatus zvpiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp16u* pDst,
                                                           int dstStep);
/* Y Cb Cr blocks to packed BGR555 pixels, 4:2:2. */
ZVPJ_API ZvpStatus zvpiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp16u* pDst,
                                                           int dstStep);
/* Y Cb Cr blocks to packed BGR555 pixels, 4:1:1. */
ZVPJ_API ZvpStatus zvpiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp16u* pDst,
                                                           int dstStep);

/* Y Cb Cr blocks to packed BGR565 pixels, 4:4:4. */
ZVPJ_API ZvpStatus zvpiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp16u* pDst,
                                                           int dstStep);
/* Y Cb Cr blocks to packed BGR565 pixels, 4:2:2. */
ZVPJ_API ZvpStatus zvpiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp16u* pDst,
                                                           int dstStep);
/* Y Cb Cr blocks to packed BGR565 pixels, 4:1:1. */
ZVPJ_API ZvpStatus zvpiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp16u* pDst,
                                                           int dstStep);

/* Y Cb Cr blocks to interleaved Y Cb Cr bytes (chroma replicated), 4:4:4. */
ZVPJ_API ZvpStatus zvpiSampleUp444LS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);
/* Y Cb Cr blocks to interleaved Y Cb Cr bytes (chroma replicated), 4:2:2. */
ZVPJ_API ZvpStatus zvpiSampleUp422LS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);
/* Y Cb Cr blocks to interleaved Y Cb Cr bytes (chroma replicated), 4:1:1. */
ZVPJ_API ZvpStatus zvpiSampleUp411LS_MCU_16s8u_P3C3R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);

/* 4:2:2 Y Cb Cr blocks to Y Cb Y Cr bytes. */
ZVPJ_API ZvpStatus zvpiJoin422LS_MCU_16s8u_P3C2R(const Zvp16s* const pSrcMCU[3], Zvp8u* pDst, int dstStep);

/* Interleaved RGB to Y Cb Cr blocks, 4:4:4. */
ZVPJ_API ZvpStatus zvpiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);
/* Interleaved RGB to Y Cb Cr blocks, 4:2:2. */
ZVPJ_API ZvpStatus zvpiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);
/* Interleaved RGB to Y Cb Cr blocks, 4:1:1. */
ZVPJ_API ZvpStatus zvpiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);

/* Interleaved BGR to Y Cb Cr blocks, 4:4:4. */
ZVPJ_API ZvpStatus zvpiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);
/* Interleaved BGR to Y Cb Cr blocks, 4:2:2. */
ZVPJ_API ZvpStatus zvpiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);
/* Interleaved BGR to Y Cb Cr blocks, 4:1:1. */
ZVPJ_API ZvpStatus zvpiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);

/* Interleaved CMYK to Y Cb Cr K blocks, 4:4:4. */
ZVPJ_API ZvpStatus zvpiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[4]);
/* Interleaved CMYK to Y Cb Cr K blocks, 4:2:2. */
ZVPJ_API ZvpStatus zvpiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[4]);
/* Interleaved CMYK to Y Cb Cr K blocks, 4:1:1. */
ZVPJ_API ZvpStatus zvpiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[4]);

/* Packed BGR555 pixels to Y Cb Cr blocks, 4:4:4. */
ZVPJ_API ZvpStatus zvpiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const Zvp16u* pSrc, int srcStep,
                                                           Zvp16s* const pDstMCU[3]);
/* Packed BGR555 pixels to Y Cb Cr blocks, 4:2:2. */
ZVPJ_API ZvpStatus zvpiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const Zvp16u* pSrc, int srcStep,
                                                           Zvp16s* const pDstMCU[3]);
/* Packed BGR555 pixels to Y Cb Cr blocks, 4:1:1. */
ZVPJ_API ZvpStatus zvpiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const Zvp16u* pSrc, int srcStep,
                                                           Zvp16s* const pDstMCU[3]);

/* Packed BGR565 pixels to Y Cb Cr blocks, 4:4:4. */
ZVPJ_API ZvpStatus zvpiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const Zvp16u* pSrc, int srcStep,
                                                           Zvp16s* const pDstMCU[3]);
/* Packed BGR565 pixels to Y Cb Cr blocks, 4:2:2. */
ZVPJ_API ZvpStatus zvpiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const Zvp16u* pSrc, int srcStep,
                                                           Zvp16s* const pDstMCU[3]);
/* Packed BGR565 pixels to Y Cb Cr blocks, 4:1:1. */
ZVPJ_API ZvpStatus zvpiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const Zvp16u* pSrc, int srcStep,
                                                           Zvp16s* const pDstMCU[3]);

/* Interleaved Y Cb Cr bytes to Y Cb Cr blocks (chroma averaged), 4:4:4. */
ZVPJ_API ZvpStatus zvpiSampleDown444LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);
/* Interleaved Y Cb Cr bytes to Y Cb Cr blocks (chroma averaged), 4:2:2. */
ZVPJ_API ZvpStatus zvpiSampleDown422LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);
/* Interleaved Y Cb Cr bytes to Y Cb Cr blocks (chroma averaged), 4:1:1. */
ZVPJ_API ZvpStatus zvpiSampleDown411LS_MCU_8u16s_C3P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);

/* Y Cb Y Cr bytes to 4:2:2 Y Cb Cr blocks. */
ZVPJ_API ZvpStatus zvpiSplit422LS_MCU_8u16s_C2P3R(const Zvp8u* pSrc, int srcStep, Zvp16s* const pDstMCU[3]);

/* ======================================================================== */
/* TIFF row coding                                                          */
/* ======================================================================== */

/* Compresses one row of srcLenBytes bytes with PackBits into pDst from
   *pDstCurrPos on (dstLenBytes bytes of room from there), advancing it.
   zvpStatusNullPointer; zvpStatusBadSize for a length < 1; zvpStatusUnderRun
   when the destination runs out (*pDstCurrPos then ends the last whole token). */
ZVPJ_API ZvpStatus zvpiPackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int srcLenBytes, Zvp8u* pDst, int* pDstCurrPos,
                                              int dstLenBytes);

/* Expands PackBits data from pSrc[*pSrcCurrPos ..] (srcLenBytes in all) into
   exactly dstLenBytes bytes of pDst, advancing *pSrcCurrPos.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusUnderRun when a token needs
   more source or destination bytes than there are. */
ZVPJ_API ZvpStatus zvpiUnpackBitsRow_TIFF_8u_C1(const Zvp8u* pSrc, int* pSrcCurrPos, int srcLenBytes, Zvp8u* pDst,
                                                int dstLenBytes);

/* Joins two byte rows into len 16-bit samples: byte 2i of pDst from pSrc[0][i]
   (low byte on little-endian), byte 2i + 1 from pSrc[1][i].
   zvpStatusNullPointer; zvpStatusBadStep for len < 1. */
ZVPJ_API ZvpStatus zvpiJoinRow_TIFF_8u16u_C1(const Zvp8u* const pSrc[2], Zvp16u* pDst, int len);

/* Splits len 16-bit samples into two byte rows: pDst[0][i] from byte 2i,
   pDst[1][i] from byte 2i + 1. zvpStatusNullPointer; zvpStatusBadStep for len < 1. */
ZVPJ_API ZvpStatus zvpiSplitRow_TIFF_16u8u_C1(const Zvp16u* pSrc, Zvp8u* const pDst[2], int len);

/* ======================================================================== */
/* JPEG 2000 component transforms                                           */
/*                                                                          */
/* RCT: reversible, integer. ICT: irreversible (32f float; 16s and 32s in   */
/* Q14 fixed point, with different formulas). Plane 0 is Y, planes 1 and 2  */
/* the chroma components; R, G, B in the interleaved order. Failures:       */
/* zvpStatusNullPointer (also a null plane), zvpStatusBadStep (step < 1),   */
/* zvpStatusBadSize.                                                        */
/* ======================================================================== */

/* Forward RCT, interleaved RGB to Y U V planes, 16-bit. */
ZVPJ_API ZvpStatus zvpiRCTFwd_JPEG2K_16s_C3P3R(const Zvp16s* pSrc, int srcStep, Zvp16s* const pDst[3], int dstStep,
                                               ZvpiSize roiSize);
/* Forward RCT, interleaved RGB to Y U V planes, 32-bit. */
ZVPJ_API ZvpStatus zvpiRCTFwd_JPEG2K_32s_C3P3R(const Zvp32s* pSrc, int srcStep, Zvp32s* const pDst[3], int dstStep,
                                               ZvpiSize roiSize);
/* Inverse RCT, Y U V planes to interleaved RGB, 16-bit. */
ZVPJ_API ZvpStatus zvpiRCTInv_JPEG2K_16s_P3C3R(const Zvp16s* const pSrc[3], int srcStep, Zvp16s* pDst, int dstStep,
                                               ZvpiSize roiSize);
/* Inverse RCT, Y U V planes to interleaved RGB, 32-bit. */
ZVPJ_API ZvpStatus zvpiRCTInv_JPEG2K_32s_P3C3R(const Zvp32s* const pSrc[3], int srcStep, Zvp32s* pDst, int dstStep,
                                               ZvpiSize roiSize);
/* Forward RCT in place on three planes, 16-bit. */
ZVPJ_API ZvpStatus zvpiRCTFwd_JPEG2K_16s_P3IR(Zvp16s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Forward RCT in place on three planes, 32-bit. */
ZVPJ_API ZvpStatus zvpiRCTFwd_JPEG2K_32s_P3IR(Zvp32s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Inverse RCT in place on three planes, 16-bit. */
ZVPJ_API ZvpStatus zvpiRCTInv_JPEG2K_16s_P3IR(Zvp16s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Inverse RCT in place on three planes, 32-bit. */
ZVPJ_API ZvpStatus zvpiRCTInv_JPEG2K_32s_P3IR(Zvp32s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);

/* Forward ICT, interleaved RGB to Y Cb Cr planes, float. */
ZVPJ_API ZvpStatus zvpiICTFwd_JPEG2K_32f_C3P3R(const Zvp32f* pSrc, int srcStep, Zvp32f* const pDst[3], int dstStep,
                                               ZvpiSize roiSize);
/* Inverse ICT, Y Cb Cr planes to interleaved RGB, float. */
ZVPJ_API ZvpStatus zvpiICTInv_JPEG2K_32f_P3C3R(const Zvp32f* const pSrc[3], int srcStep, Zvp32f* pDst, int dstStep,
                                               ZvpiSize roiSize);
/* Forward ICT in place on three planes, float. */
ZVPJ_API ZvpStatus zvpiICTFwd_JPEG2K_32f_P3IR(Zvp32f* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Inverse ICT in place on three planes, float. */
ZVPJ_API ZvpStatus zvpiICTInv_JPEG2K_32f_P3IR(Zvp32f* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Forward ICT in place on three planes, 16-bit Q14, two stages, saturating. */
ZVPJ_API ZvpStatus zvpiICTFwd_JPEG2K_16s_P3IR(Zvp16s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Inverse ICT in place on three planes, 16-bit Q14, saturating. */
ZVPJ_API ZvpStatus zvpiICTInv_JPEG2K_16s_P3IR(Zvp16s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Forward ICT in place on three planes, 32-bit Q14, wrapping. */
ZVPJ_API ZvpStatus zvpiICTFwd_JPEG2K_32s_P3IR(Zvp32s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);
/* Inverse ICT in place on three planes, 32-bit Q14, wrapping. */
ZVPJ_API ZvpStatus zvpiICTInv_JPEG2K_32s_P3IR(Zvp32s* const pSrcDst[3], int srcDstStep, ZvpiSize roiSize);

/* ======================================================================== */
/* Reversible 5/3 wavelet                                                   */
/*                                                                          */
/* One level per call. Tile forms take the tile rectangle (phases from the  */
/* low bits of x and y) and a scratch buffer pBuffer of the size reported   */
/* by the matching zvpiWTGetBufSize_ query (non-null even for size 0).      */
/* Subband arrays (C1R tile forms): 4 pointers and 4 steps in the order LL, */
/* LH, HL, HH. Row and column passes: the caller extends the source beyond  */
/* the region; phase 0 means the first sample is a low-pass position.       */
/* ColLift: one lifting step on rows of `width` samples, for streaming      */
/* column transforms. Failures: zvpStatusNullPointer, zvpStatusBadStep,     */
/* zvpStatusBadSize in the family's order.                                  */
/* ======================================================================== */

/* Forward 5/3 of a tile in place (columns first, then rows), 16-bit. */
ZVPJ_API ZvpStatus zvpiWTFwd_B53_JPEG2K_16s_C1IR(Zvp16s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Forward 5/3 of a tile in place, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTFwd_B53_JPEG2K_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Forward 5/3 of a tile into four subband regions, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTFwd_B53_JPEG2K_16s_C1R(const Zvp16s* pSrc, int srcStep, const ZvpiRect* pTileRect,
                                                Zvp16s* const pDst[4], const int dstStep[4], Zvp8u* pBuffer);
/* Forward 5/3 of a tile into four subband regions, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTFwd_B53_JPEG2K_32s_C1R(const Zvp32s* pSrc, int srcStep, const ZvpiRect* pTileRect,
                                                Zvp32s* const pDst[4], const int dstStep[4], Zvp8u* pBuffer);
/* Inverse 5/3 of a tile in place (rows first, then columns), 16-bit. */
ZVPJ_API ZvpStatus zvpiWTInv_B53_JPEG2K_16s_C1IR(Zvp16s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Inverse 5/3 of a tile in place, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInv_B53_JPEG2K_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Inverse 5/3 of four subband regions into a tile, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTInv_B53_JPEG2K_16s_C1R(const Zvp16s* const pSrc[4], const int srcStep[4], Zvp16s* pDst,
                                                int dstStep, const ZvpiRect* pTileRect, Zvp8u* pBuffer);
/* Inverse 5/3 of four subband regions into a tile, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInv_B53_JPEG2K_32s_C1R(const Zvp32s* const pSrc[4], const int srcStep[4], Zvp32s* pDst,
                                                int dstStep, const ZvpiRect* pTileRect, Zvp8u* pBuffer);

/* Scratch bytes for the in-place 5/3 tile forms, 16-bit (0 for tiles below 3x3).
   zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_B53_JPEG2K_16s_C1IR(const ZvpiRect* pTileRect, int* pSize);
/* Scratch bytes for the in-place 5/3 tile forms, 32-bit. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_B53_JPEG2K_32s_C1IR(const ZvpiRect* pTileRect, int* pSize);
/* Scratch bytes for the subband 5/3 tile forms, 16-bit. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_B53_JPEG2K_16s_C1R(const ZvpiRect* pTileRect, int* pSize);
/* Scratch bytes for the subband 5/3 tile forms, 32-bit. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_B53_JPEG2K_32s_C1R(const ZvpiRect* pTileRect, int* pSize);

/* Forward 5/3 row pass: each source row (2 * width samples, extended) to a
   low and a high row of dstRoiSize.width samples, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTFwdRow_B53_JPEG2K_16s_C1R(const Zvp16s* pSrc, int srcStep, Zvp16s* pDstLow,
                                                   int dstLowStep, Zvp16s* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Forward 5/3 row pass, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTFwdRow_B53_JPEG2K_32s_C1R(const Zvp32s* pSrc, int srcStep, Zvp32s* pDstLow,
                                                   int dstLowStep, Zvp32s* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Inverse 5/3 row pass: low and high rows (extended) to rows of
   2 * srcRoiSize.width samples, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTInvRow_B53_JPEG2K_16s_C1R(const Zvp16s* pSrcLow, int srcLowStep, const Zvp16s* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp16s* pDst,
                                                   int dstStep, int phase);
/* Inverse 5/3 row pass, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInvRow_B53_JPEG2K_32s_C1R(const Zvp32s* pSrcLow, int srcLowStep, const Zvp32s* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp32s* pDst,
                                                   int dstStep, int phase);
/* Forward 5/3 column pass: 2 * height source rows (extended) to low and high
   regions of dstRoiSize, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTFwdCol_B53_JPEG2K_16s_C1R(const Zvp16s* pSrc, int srcStep, Zvp16s* pDstLow,
                                                   int dstLowStep, Zvp16s* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Forward 5/3 column pass, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTFwdCol_B53_JPEG2K_32s_C1R(const Zvp32s* pSrc, int srcStep, Zvp32s* pDstLow,
                                                   int dstLowStep, Zvp32s* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Inverse 5/3 column pass: low and high regions (extended) to 2 * height rows,
   16-bit. */
ZVPJ_API ZvpStatus zvpiWTInvCol_B53_JPEG2K_16s_C1R(const Zvp16s* pSrcLow, int srcLowStep, const Zvp16s* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp16s* pDst,
                                                   int dstStep, int phase);
/* Inverse 5/3 column pass, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInvCol_B53_JPEG2K_32s_C1R(const Zvp32s* pSrcLow, int srcLowStep, const Zvp32s* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp32s* pDst,
                                                   int dstStep, int phase);

/* Forward 5/3 single lift: from input rows 2k, 2k+1, 2k+2 (pSrc0..2) and the
   previous high row pSrcHigh0, writes high row pDstHigh1 and low row pDstLow0;
   16-bit arithmetic throughout. zvpStatusNullPointer; zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiWTFwdColLift_B53_JPEG2K_16s_C1(const Zvp16s* pSrc0, const Zvp16s* pSrc1,
                                                      const Zvp16s* pSrc2, Zvp16s* pDstLow0,
                                                      const Zvp16s* pSrcHigh0, Zvp16s* pDstHigh1, int width);
/* Forward 5/3 single lift, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTFwdColLift_B53_JPEG2K_32s_C1(const Zvp32s* pSrc0, const Zvp32s* pSrc1,
                                                      const Zvp32s* pSrc2, Zvp32s* pDstLow0,
                                                      const Zvp32s* pSrcHigh0, Zvp32s* pDstHigh1, int width);
/* Inverse 5/3 single lift: from low row pSrcLow0, high rows pSrcHigh0 and
   pSrcHigh1 and the previous even output row pSrc0, writes the odd row pDst1
   and the next even row pDst2; 16-bit. zvpStatusNullPointer; zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiWTInvColLift_B53_JPEG2K_16s_C1(const Zvp16s* pSrcLow0, const Zvp16s* pSrcHigh0,
                                                      const Zvp16s* pSrcHigh1, const Zvp16s* pSrc0,
                                                      Zvp16s* pDst1, Zvp16s* pDst2, int width);
/* Inverse 5/3 single lift, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInvColLift_B53_JPEG2K_32s_C1(const Zvp32s* pSrcLow0, const Zvp32s* pSrcHigh0,
                                                      const Zvp32s* pSrcHigh1, const Zvp32s* pSrc0,
                                                      Zvp32s* pDst1, Zvp32s* pDst2, int width);

/* ======================================================================== */
/* Irreversible 9/7 wavelet                                                 */
/*                                                                          */
/* Same forms and conventions as the 5/3 wavelet. Each form has its own     */
/* number format: tiles 16s in Q14 (wrapping), tiles 32s in float          */
/* (truncated and clamped on output); rows 16s in Q16/Q15 (saturating),     */
/* rows 32s in Q16 (wrapping), rows and columns 32f in float.               */
/* ======================================================================== */

/* Forward 9/7 of a tile in place, 16-bit Q14. */
ZVPJ_API ZvpStatus zvpiWTFwd_D97_JPEG2K_16s_C1IR(Zvp16s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Forward 9/7 of a tile in place, 32-bit samples, float arithmetic. */
ZVPJ_API ZvpStatus zvpiWTFwd_D97_JPEG2K_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Forward 9/7 of a tile into four subband regions, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTFwd_D97_JPEG2K_16s_C1R(const Zvp16s* pSrc, int srcStep, const ZvpiRect* pTileRect,
                                                Zvp16s* const pDst[4], const int dstStep[4], Zvp8u* pBuffer);
/* Forward 9/7 of a tile into four subband regions, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTFwd_D97_JPEG2K_32s_C1R(const Zvp32s* pSrc, int srcStep, const ZvpiRect* pTileRect,
                                                Zvp32s* const pDst[4], const int dstStep[4], Zvp8u* pBuffer);
/* Inverse 9/7 of a tile in place, 16-bit Q14. */
ZVPJ_API ZvpStatus zvpiWTInv_D97_JPEG2K_16s_C1IR(Zvp16s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Inverse 9/7 of a tile in place, 32-bit samples, float arithmetic. */
ZVPJ_API ZvpStatus zvpiWTInv_D97_JPEG2K_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, const ZvpiRect* pTileRect,
                                                 Zvp8u* pBuffer);
/* Inverse 9/7 of four subband regions into a tile, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTInv_D97_JPEG2K_16s_C1R(const Zvp16s* const pSrc[4], const int srcStep[4], Zvp16s* pDst,
                                                int dstStep, const ZvpiRect* pTileRect, Zvp8u* pBuffer);
/* Inverse 9/7 of four subband regions into a tile, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInv_D97_JPEG2K_32s_C1R(const Zvp32s* const pSrc[4], const int srcStep[4], Zvp32s* pDst,
                                                int dstStep, const ZvpiRect* pTileRect, Zvp8u* pBuffer);

/* Scratch bytes for the in-place 9/7 tile forms, 16-bit (0 for 1x1 tiles).
   zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_D97_JPEG2K_16s_C1IR(const ZvpiRect* pTileRect, int* pSize);
/* Scratch bytes for the in-place 9/7 tile forms, 32-bit. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_D97_JPEG2K_32s_C1IR(const ZvpiRect* pTileRect, int* pSize);
/* Scratch bytes for the subband 9/7 tile forms, 16-bit. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_D97_JPEG2K_16s_C1R(const ZvpiRect* pTileRect, int* pSize);
/* Scratch bytes for the subband 9/7 tile forms, 32-bit. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiWTGetBufSize_D97_JPEG2K_32s_C1R(const ZvpiRect* pTileRect, int* pSize);

/* Forward 9/7 row pass, 16-bit (Q16 edges, Q15 interior, saturating). */
ZVPJ_API ZvpStatus zvpiWTFwdRow_D97_JPEG2K_16s_C1R(const Zvp16s* pSrc, int srcStep, Zvp16s* pDstLow,
                                                   int dstLowStep, Zvp16s* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Forward 9/7 row pass, 32-bit (Q16, wrapping). */
ZVPJ_API ZvpStatus zvpiWTFwdRow_D97_JPEG2K_32s_C1R(const Zvp32s* pSrc, int srcStep, Zvp32s* pDstLow,
                                                   int dstLowStep, Zvp32s* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Forward 9/7 row pass, float. */
ZVPJ_API ZvpStatus zvpiWTFwdRow_D97_JPEG2K_32f_C1R(const Zvp32f* pSrc, int srcStep, Zvp32f* pDstLow,
                                                   int dstLowStep, Zvp32f* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Inverse 9/7 row pass, 16-bit. */
ZVPJ_API ZvpStatus zvpiWTInvRow_D97_JPEG2K_16s_C1R(const Zvp16s* pSrcLow, int srcLowStep, const Zvp16s* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp16s* pDst,
                                                   int dstStep, int phase);
/* Inverse 9/7 row pass, 32-bit. */
ZVPJ_API ZvpStatus zvpiWTInvRow_D97_JPEG2K_32s_C1R(const Zvp32s* pSrcLow, int srcLowStep, const Zvp32s* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp32s* pDst,
                                                   int dstStep, int phase);
/* Inverse 9/7 row pass, float. */
ZVPJ_API ZvpStatus zvpiWTInvRow_D97_JPEG2K_32f_C1R(const Zvp32f* pSrcLow, int srcLowStep, const Zvp32f* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp32f* pDst,
                                                   int dstStep, int phase);
/* Forward 9/7 column pass, float. */
ZVPJ_API ZvpStatus zvpiWTFwdCol_D97_JPEG2K_32f_C1R(const Zvp32f* pSrc, int srcStep, Zvp32f* pDstLow,
                                                   int dstLowStep, Zvp32f* pDstHigh, int dstHighStep,
                                                   ZvpiSize dstRoiSize, int phase);
/* Inverse 9/7 column pass, float. */
ZVPJ_API ZvpStatus zvpiWTInvCol_D97_JPEG2K_32f_C1R(const Zvp32f* pSrcLow, int srcLowStep, const Zvp32f* pSrcHigh,
                                                   int srcHighStep, ZvpiSize srcRoiSize, Zvp32f* pDst,
                                                   int dstStep, int phase);

/* Forward 9/7 single lift, a three-stage pipeline down a column: from input
   rows 2k..2k+2 it writes the new A row pDstHigh2 and B row pDstLow1, and
   finishes the rows pSrcDstHigh1, pSrcDstLow0 and pSrcDstHigh0 carried from
   earlier calls; 16-bit Q15. zvpStatusNullPointer; zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiWTFwdColLift_D97_JPEG2K_16s_C1(const Zvp16s* pSrc0, const Zvp16s* pSrc1,
                                                      const Zvp16s* pSrc2, Zvp16s* pSrcDstLow0, Zvp16s* pDstLow1,
                                                      Zvp16s* pSrcDstHigh0, Zvp16s* pSrcDstHigh1,
                                                      Zvp16s* pDstHigh2, int width);
/* Forward 9/7 single lift, 32-bit Q16. */
ZVPJ_API ZvpStatus zvpiWTFwdColLift_D97_JPEG2K_32s_C1(const Zvp32s* pSrc0, const Zvp32s* pSrc1,
                                                      const Zvp32s* pSrc2, Zvp32s* pSrcDstLow0, Zvp32s* pDstLow1,
                                                      Zvp32s* pSrcDstHigh0, Zvp32s* pSrcDstHigh1,
                                                      Zvp32s* pDstHigh2, int width);
/* Forward 9/7 single lift, float. */
ZVPJ_API ZvpStatus zvpiWTFwdColLift_D97_JPEG2K_32f_C1(const Zvp32f* pSrc0, const Zvp32f* pSrc1,
                                                      const Zvp32f* pSrc2, Zvp32f* pSrcDstLow0, Zvp32f* pDstLow1,
                                                      Zvp32f* pSrcDstHigh0, Zvp32f* pSrcDstHigh1,
                                                      Zvp32f* pDstHigh2, int width);
/* Inverse 9/7 single lift: from low row pSrcLow0, high rows pSrcHigh0 and
   pSrcHigh1 and the previous even row pSrc0, writes new rows pDst4 and pDst3
   and finishes the odd row pSrcDst1 and the even row pSrcDst2; 16-bit Q15.
   zvpStatusNullPointer; zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiWTInvColLift_D97_JPEG2K_16s_C1(const Zvp16s* pSrcLow0, const Zvp16s* pSrcHigh0,
                                                      const Zvp16s* pSrcHigh1, const Zvp16s* pSrc0,
                                                      Zvp16s* pSrcDst1, Zvp16s* pSrcDst2, Zvp16s* pDst3,
                                                      Zvp16s* pDst4, int width);
/* Inverse 9/7 single lift, 32-bit Q16. */
ZVPJ_API ZvpStatus zvpiWTInvColLift_D97_JPEG2K_32s_C1(const Zvp32s* pSrcLow0, const Zvp32s* pSrcHigh0,
                                                      const Zvp32s* pSrcHigh1, const Zvp32s* pSrc0,
                                                      Zvp32s* pSrcDst1, Zvp32s* pSrcDst2, Zvp32s* pDst3,
                                                      Zvp32s* pDst4, int width);
/* Inverse 9/7 single lift, float. */
ZVPJ_API ZvpStatus zvpiWTInvColLift_D97_JPEG2K_32f_C1(const Zvp32f* pSrcLow0, const Zvp32f* pSrcHigh0,
                                                      const Zvp32f* pSrcHigh1, const Zvp32f* pSrc0,
                                                      Zvp32f* pSrcDst1, Zvp32f* pSrcDst2, Zvp32f* pDst3,
                                                      Zvp32f* pDst4, int width);

/* ======================================================================== */
/* JPEG 2000 code-block decoder                                             */
/*                                                                          */
/* Samples are 32-bit sign-magnitude (bit 31 the sign) on both sides.       */
/* flags: the zvpCBStyle* and zvpCBDecode* constants above.                 */
/* ======================================================================== */

/* Decodes one whole code block from numSegments segments lying back to back
   in pSrc (lengths in pSegLengths), at most numPasses passes from plane
   numBitPlanes - 1 down; pState is a buffer of zvpiDecodeGetBufSize_JPEG2K
   bytes. pErrBitPlane may be null. zvpStatusNullPointer; zvpStatusBadSize;
   zvpStatusBadStep; zvpStatusDamagedCodeBlock (samples concealed if asked). */
ZVPJ_API ZvpStatus zvpiDecodeCodeBlock_JPEG2K_1u32s_C1R(const Zvp8u* pSrc, Zvp32s* pDst, int dstStep,
                                                        ZvpiSize roiSize, int subband, int numBitPlanes,
                                                        int numPasses, const Zvp32s* pSegLengths,
                                                        int numSegments, int flags, int* pErrBitPlane,
                                                        Zvp8u* pState);

/* Writes the state buffer size for code blocks up to width x height.
   zvpStatusBadSize; zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiDecodeGetBufSize_JPEG2K(int width, int height, int* pSize);

/* ======================================================================== */
/* Progressive JPEG 2000 code-block decoder                                 */
/*                                                                          */
/* Calling order: GetStateSize and Init (or InitAlloc) once; per block      */
/* Attach, SetPassCounter, any number of Steps; Free after InitAlloc. Every */
/* operation on a record but Init tests its identifier                      */
/* (zvpStatusContextMismatch).                                              */
/* ======================================================================== */

/* Writes the record size for code blocks up to width x height
   (ZVPJ_DECODE_CBPROGR_STATE_SIZE). zvpStatusBadSize; zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrGetStateSize_JPEG2K(int width, int height, int* pSize);

/* Makes a buffer of the queried size (aligned to at least 8 bytes) a decoder
   record. zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrInit_JPEG2K(zvpiDecodeCBProgrState* pState);

/* Allocates and initialises a record for blocks up to width x height.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusOutOfMemory (*ppState is
   then null). */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrInitAlloc_JPEG2K(zvpiDecodeCBProgrState** ppState, int width, int height);

/* Frees a record from zvpiDecodeCBProgrInitAlloc_JPEG2K.
   zvpStatusNullPointer; zvpStatusContextMismatch. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrFree_JPEG2K(zvpiDecodeCBProgrState* pState);

/* Binds a code block (destination samples, subband, plane count, flags) to the
   record and clears it unless the flags say it is clean; the pass counter
   becomes 0. zvpStatusNullPointer; zvpStatusContextMismatch;
   zvpStatusBadStep; zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrAttach_JPEG2K_32s_C1R(Zvp32s* pDst, int dstStep, ZvpiSize roiSize,
                                                          zvpiDecodeCBProgrState* pState, int subband,
                                                          int numBitPlanes, int flags);

/* Sets the number of coding passes that later Steps may decode.
   zvpStatusNullPointer; zvpStatusContextMismatch. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrSetPassCounter_JPEG2K(int passes, zvpiDecodeCBProgrState* pState);

/* Reads the number of passes left. zvpStatusNullPointer; zvpStatusContextMismatch. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrGetPassCounter_JPEG2K(const zvpiDecodeCBProgrState* pState, int* pPasses);

/* Reads the current bit plane (-1 after the last plane).
   zvpStatusNullPointer; zvpStatusContextMismatch. */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(const zvpiDecodeCBProgrState* pState,
                                                             int* pBitPlane);

/* Decodes one code word segment of srcLen bytes. zvpStatusNullPointer;
   zvpStatusContextMismatch; zvpStatusNotAttached; zvpStatusDamagedCodeBlock
   (and on every later Step until the next Attach). */
ZVPJ_API ZvpStatus zvpiDecodeCBProgrStep_JPEG2K(const Zvp8u* pSrc, int srcLen, zvpiDecodeCBProgrState* pState);

/* ======================================================================== */
/* JPEG 2000 code-block encoder                                             */
/*                                                                          */
/* Calling order: InitAlloc once for the largest block; per block           */
/* LoadCodeBlock, StoreBits until *pIsNotFinish is 0, then the getters;     */
/* Free at the end. Every operation but InitAlloc and Free tests the        */
/* record's identifier (zvpStatusContextMismatch).                          */
/* ======================================================================== */

/* Allocates an encoder record for code blocks up to width x height.
   zvpStatusNullPointer; zvpStatusBadSize; zvpStatusOutOfMemory (*ppState is
   then null). */
ZVPJ_API ZvpStatus zvpiEncodeInitAlloc_JPEG2K(zvpiEncodeState** ppState, int width, int height);

/* Frees an encoder record (its identifier is not tested). zvpStatusNullPointer. */
ZVPJ_API ZvpStatus zvpiEncodeFree_JPEG2K(zvpiEncodeState* pState);

/* Runs all coding passes of one code block of sign-magnitude samples and
   records the decisions and per-pass distortions. magnBits: magnitude bits
   (planes below 31 - magnBits are not coded); mqTermType: see ZvpMQTermType;
   mqRateAppr is accepted and not used. Outputs the plane, pass and terminated
   pass counts. zvpStatusNullPointer; zvpStatusContextMismatch;
   zvpStatusBadSize; zvpStatusBadStep. */
ZVPJ_API ZvpStatus zvpiEncodeLoadCodeBlock_JPEG2K_32s_C1R(const Zvp32s* pSrc, int srcStep, ZvpiSize roiSize,
                                                          zvpiEncodeState* pState, int subband, int magnBits,
                                                          int mqTermType, int mqRateAppr, int flags,
                                                          int* pNumBitPlanes, int* pNumPasses,
                                                          int* pNumTermPasses);

/* Writes coded bytes of the loaded block: *pDstLen is the room on entry and the
   bytes stored on exit; *pIsNotFinish is 1 while bytes remain. Call again until
   it is 0. zvpStatusNullPointer; zvpStatusContextMismatch; zvpStatusBadSize. */
ZVPJ_API ZvpStatus zvpiEncodeStoreBits_JPEG2K_1u(Zvp8u* pDst, int* pDstLen, zvpiEncodeState* pState,
                                                 int* pIsNotFinish);

/* Length in bytes of terminated segment termPass. zvpStatusNullPointer;
   zvpStatusContextMismatch; zvpStatusBadPassNumber. */
ZVPJ_API ZvpStatus zvpiEncodeGetTermPassLen_JPEG2K(const zvpiEncodeState* pState, int termPass, int* pLen);

/* Bytes from the start of the block to the truncation point after `pass`.
   zvpStatusNullPointer; zvpStatusContextMismatch; zvpStatusBadPassNumber. */
ZVPJ_API ZvpStatus zvpiEncodeGetRate_JPEG2K(const zvpiEncodeState* pState, int pass, int* pRate);

/* Distortion removed by passes 0 through `pass`. zvpStatusNullPointer;
   zvpStatusContextMismatch; zvpStatusBadPassNumber. */
ZVPJ_API ZvpStatus zvpiEncodeGetDist_JPEG2K(const zvpiEncodeState* pState, int pass, Zvp64f* pDist);

/* ======================================================================== */
/* DXT block decoders                                                       */
/*                                                                          */
/* pSrc: the block stream, ceil(width / 4) blocks per block row; pDst:      */
/* R G B A pixels. Failures: zvpStatusNullPointer; zvpStatusBadStep for a   */
/* dstStep of 0 (a negative step is accepted); zvpStatusBadSize.            */
/* ======================================================================== */

/* Decodes DXT1 (8-byte) blocks to RGBA pixels. */
ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep,
                                                              ZvpiSize roiSize);
/* Decodes DXT3 (16-byte) blocks to RGBA pixels. */
ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep,
                                                              ZvpiSize roiSize);
/* Decodes DXT5 (16-byte) blocks to RGBA pixels. */
ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep,
                                                              ZvpiSize roiSize);

/* ======================================================================== */
/* BC7 block decoder                                                        */
/* ======================================================================== */

/* Decodes BC7 (16-byte) blocks to RGBA pixels; an invalid mode gives
   transparent black. Failures as the DXT decoders. */
ZVPJ_API ZvpStatus zvpiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const Zvp8u* pSrc, Zvp8u* pDst, int dstStep,
                                                             ZvpiSize roiSize);

/* ======================================================================== */
/* DXT block encoders                                                       */
/*                                                                          */
/* pSrc: R G B A pixels; pDst: blocks back to back, row of blocks after row */
/* of blocks. Failures: zvpStatusNullPointer; zvpStatusBadStep for a        */
/* srcStep of 0 (a negative step is accepted); zvpStatusBadSize.            */
/* ======================================================================== */

/* Encodes RGBA pixels into DXT1 blocks. */
ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roiSize,
                                                                Zvp8u* pDst);
/* Encodes RGBA pixels into DXT3 blocks. */
ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roiSize,
                                                                Zvp8u* pDst);
/* Encodes RGBA pixels into DXT5 blocks. Regions 16 or more pixels wide take
   the wide path, two blocks at a time; its working store is per call, so the
   function is reentrant like every other. */
ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roiSize,
                                                                Zvp8u* pDst);

/* ======================================================================== */
/* DXT5 encoder from YCoCg                                                  */
/* ======================================================================== */

/* Encodes Y Co Cg pixels (3 bytes, chroma biased by 128) into DXT5 blocks:
   luma in alpha, chroma in red and green, scale in blue. Failures as the DXT
   encoders. */
ZVPJ_API ZvpStatus zvpiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const Zvp8u* pSrc, int srcStep, ZvpiSize roiSize,
                                                                 Zvp8u* pDst);

/* ======================================================================== */
/* HD Photo core transform                                                  */
/*                                                                          */
/* The lossless 4x4 photo core transform, in place on every 4x4 block of a  */
/* region of 32-bit values. Failures: zvpStatusNullPointer; zvpStatusBadStep */
/* for a step below 4 times the width (compared unsigned); generic members  */
/* also zvpStatusBadSize for a size below 1 or not a multiple of 4.          */
/* ======================================================================== */

/* Forward transform of a 16x16 region. */
ZVPJ_API ZvpStatus zvpiPCTFwd16x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep);
/* Forward transform of an 8-wide, 16-high region. */
ZVPJ_API ZvpStatus zvpiPCTFwd8x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep);
/* Forward transform of an 8x8 region. */
ZVPJ_API ZvpStatus zvpiPCTFwd8x8_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep);
/* Forward transform of a region whose sides are multiples of 4. */
ZVPJ_API ZvpStatus zvpiPCTFwd_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize);
/* Inverse transform of a 16x16 region. */
ZVPJ_API ZvpStatus zvpiPCTInv16x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep);
/* Inverse transform of an 8-wide, 16-high region. */
ZVPJ_API ZvpStatus zvpiPCTInv8x16_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep);
/* Inverse transform of an 8x8 region. */
ZVPJ_API ZvpStatus zvpiPCTInv8x8_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep);
/* Inverse transform of a region whose sides are multiples of 4. */
ZVPJ_API ZvpStatus zvpiPCTInv_HDP_32s_C1IR(Zvp32s* pSrcDst, int srcDstStep, ZvpiSize roiSize);

/* ======================================================================== */
/* Core services (exported from libzvpcore.so.6.1, not from libzvpjp8)      */
/* ======================================================================== */

/* Feature bit of ownGetFeature: AVX2 support, with the operating system
   saving the YMM state. It selects the "+" version record. */
#define ZVP_FEATURE_AVX2 UINT64_C(0x80)

/* Allocates len bytes aligned to 64 bytes; null for len < 1 or on failure. */
ZVPCORE_API void* zvpMalloc(int len);

/* Frees a block from zvpMalloc; a null pointer is ignored. */
ZVPCORE_API void zvpFree(void* ptr);

/* Stores the size in bytes of the processor's largest cache in *pSizeByte and
   returns zvpStatusOk. When the processor does not tell, stores 0 and returns
   zvpStatusError, so that a caller never sizes work by an unknown cache.
   zvpStatusNullPointer for a null pointer. */
ZVPCORE_API ZvpStatus zvpGetMaxCacheSizeB(int* pSizeByte);

/* Returns the number of threads a call of the library may use. */
ZVPCORE_API int ownGetNumThreads(void);

/* Returns the subset of featureMask that the processor (and operating system)
   supports; see ZVP_FEATURE_AVX2. */
ZVPCORE_API Zvp64u ownGetFeature(Zvp64u featureMask);

/* Sets the number of threads the library may use in one call. By default the
   count is the OpenMP maximum (which honours OMP_NUM_THREADS).
   zvpStatusBadSize for numThreads < 1. */
ZVPCORE_API ZvpStatus zvpSetNumThreads(int numThreads);

/* Returns the number of threads the library may use (as ownGetNumThreads). */
ZVPCORE_API int zvpGetNumThreads(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZVPJ_H */
