/* Metrics: the small settings of an application, kept in the user's registry hive.
 *
 * A metric is a value with a number and a type, below a key that belongs to the application and, as a
 * rule, to its version:
 *
 *   Software\VENDOR\APP\MAJOR.MINOR\Metrics[\SUBKEY]    without \MAJOR.MINOR where the major number is 0
 *
 * The vendor is "Vexmere Studio Works" unless a call names one; a null text counts as empty. A version is
 * a 32-bit number with the major number in its top 8 bits and the minor number in the next 8; the rest is
 * not read. Paths are cut at 259 characters. The name of a value is made of the number without its sign
 * (-5 and 5 are one metric) and its type: "5" for REG_DWORD, "S5" for REG_SZ, "B5" for REG_BINARY and
 * "Z5" for all others, which are REG_MULTI_SZ.
 *
 * Reading needs no check: the reader states its default. A handle without a key, which an opening that
 * failed gives, is valid too: reading through it gives the default, writing E_FAIL. Null stands for no
 * handle, and so does -1 (all bits set), the process's default handle, which nothing sets.
 *
 * Nothing is kept in memory: each call goes to the registry, whose manual (platform/registry.h) says what
 * threads and processes see of each other. Any thread may use a handle, many at once; closing it is for
 * one that uses it last. Capacities of texts are in characters with the terminator. Status codes are 0,
 * those named here, or (registry error | 0x80070000). */
#ifndef VX_METRICS_H
#define VX_METRICS_H

#include "vx/platform/registry.h"
#include "vx/platform/stream.h"
#include "vx/types.h"

/* The most bytes of a metric that is set from a stream. */
#define VXMETRIC_STREAM_MAX 2048

typedef struct tVXMETRIC* HVXMETRIC;

VX_EXTERN_C_BEGIN

/* ---- Opening and closing */

/* Opens the metrics of an application, and makes the key where it does not exist.
 *   outMetric   receives a handle to be closed in any case, also where the key could not be opened; null
 *               only with E_OUTOFMEMORY
 *   subKey      a key below the metrics key; null or empty for the metrics key itself
 * E_POINTER for a null outMetric. */
VX_EXPORT HRESULT VxMetric_Open(HVXMETRIC* outMetric, const char16_t* app, uint32_t version,
                                const char16_t* subKey);
VX_EXPORT HRESULT VxMetric_OpenRegHiveAndVersion(HVXMETRIC* outMetric, const char16_t* app, uint32_t version,
                                                 const char16_t* vendor, const char16_t* subKey);

/* The same with the whole path below HKEY_CURRENT_USER in place of its parts. */
VX_EXPORT HRESULT VxMetric_OpenAppVersion(HVXMETRIC* outMetric, const char16_t* path, const char16_t* subKey);

/* The same beside a handle that is open: subKey of the metrics key that the parent lies in, so that a
 * sub-key of a sub-key is its sibling. E_FAIL for no parent, E_INVALIDARG for one whose path has no
 * "\Metrics" in it, both with a null handle. */
VX_EXPORT HRESULT VxMetric_OpenSubKey(HVXMETRIC* outMetric, HVXMETRIC parent, const char16_t* subKey);

/* Frees the handle. Returns 0, for null too. */
VX_EXPORT HRESULT VxMetric_Close(HVXMETRIC metric);

/* The same, and deletes its key with all below. Returns 0; E_FAIL for null. */
VX_EXPORT HRESULT VxMetric_CloseAndDeleteKey(HVXMETRIC metric);

/* ---- Deleting whole keys, in the machine's and then in the user's hive. All return 0 whatever happens. */

/* The application's key of that version, with its metrics and all else below it; the third leaves the
 * machine's hive alone. Without a name of the application, or a vendor, nothing is deleted. */
VX_EXPORT HRESULT VxMetric_DeleteAll(const char16_t* app, uint32_t version);
VX_EXPORT HRESULT VxMetric_DeleteAllHiveAndVersion(const char16_t* app, uint32_t version,
                                                   const char16_t* vendor);
VX_EXPORT HRESULT VxMetric_DeleteUserMetrics(const char16_t* app, uint32_t version);

/* The metrics key, or its sub-key where one is given. */
VX_EXPORT HRESULT VxMetric_DeleteKey(const char16_t* app, uint32_t version, const char16_t* subKey);
VX_EXPORT HRESULT VxMetric_DeleteKeyHiveAndVersion(const char16_t* app, uint32_t version,
                                                   const char16_t* vendor, const char16_t* subKey);

/* ---- Numbers: REG_DWORD. A value of another type reads as none. */

/* The number, or 0. */
VX_EXPORT int32_t VxGetMetric(HVXMETRIC metric, int32_t id);

/* The number, or deflt, moved into min to max; min equal to max (0 and 0, say) sets no limits. Without a
 * handle or key deflt as it stands. */
VX_EXPORT int32_t VxGetMetricEx(HVXMETRIC metric, int32_t id, int32_t min, int32_t max, int32_t deflt);

/* 1 where the number, or deflt, is not 0, else 0. Without a handle or key deflt as it stands. */
VX_EXPORT uint32_t VxGetMetricBool(HVXMETRIC metric, int32_t id, uint32_t deflt);

/* 0, or E_FAIL. */
VX_EXPORT HRESULT VxSetMetric(HVXMETRIC metric, int32_t id, uint32_t value);

/* Numbers under a name of the caller's. */
VX_EXPORT uint32_t VxGetMetricUsingName(HVXMETRIC metric, const char16_t* name, uint32_t deflt);
VX_EXPORT HRESULT VxSetMetricUsingName(HVXMETRIC metric, const char16_t* name, uint32_t value);

/* ---- Bytes: REG_BINARY */

/* Reads bytes; returns how many. The buffer is zero behind them, and as a whole where there is no such
 * metric or it has more than size bytes; 0 is returned then. */
VX_EXPORT uint32_t VxGetMetricBinary(HVXMETRIC metric, int32_t id, void* data, uint32_t size);

/* The same and says what came of it: 0; S_FALSE where there is no such metric, with *outSize 0;
 * VX_E_BUFFERTOSMALL with the size needed in *outSize, and the buffer undefined; VX_E_ITEM_NOT_FOUND
 * without a handle or key; E_INVALIDARG for a null outSize. Null data and size 0 ask for the size. */
VX_EXPORT HRESULT VxGetMetricBinaryEx(HVXMETRIC metric, int32_t id, void* data, uint32_t size,
                                      uint32_t* outSize);

/* 0, or E_FAIL. */
VX_EXPORT HRESULT VxSetMetricBinary(HVXMETRIC metric, int32_t id, const void* data, uint32_t size);

/* Writes the bytes to the start of a stream. E_POINTER for no stream, E_UNEXPECTED where there is no such
 * metric, it is empty, or the stream took less, E_OUTOFMEMORY, or what the stream says. */
VX_EXPORT HRESULT VxGetMetricStream(HVXMETRIC metric, int32_t id, IStream* stream);

/* Stores a memory stream from its start up to its position. E_POINTER for no stream, E_INVALIDARG for more
 * than VXMETRIC_STREAM_MAX bytes or another kind of stream, E_UNEXPECTED for position 0 or one behind the
 * stream's end, E_FAIL, or what the stream says. */
VX_EXPORT HRESULT VxSetMetricStream(HVXMETRIC metric, int32_t id, IStream* stream);

/* ---- Texts: REG_SZ, and REG_MULTI_SZ: terminated texts one behind the other */

/* Reads a text; returns its length without the last terminator.
 *   dst         zero behind the text. Where what was stored has no terminator and fills dst exactly, dst
 *               has none either
 *   deflt       copied, cut to the buffer, where there is no text or the buffer has no room for it: a
 *               text is never cut. Null leaves dst empty
 *   keepEmpty   not 0: a stored empty text counts as one; 0: it counts as none */
VX_EXPORT int32_t VxGetMetricStringEx(HVXMETRIC metric, int32_t id, char16_t* dst, int32_t dstChars,
                                      const char16_t* deflt, int32_t keepEmpty);
VX_EXPORT int32_t VxGetMetricMultiStringEx(HVXMETRIC metric, int32_t id, char16_t* dst, int32_t dstChars,
                                           const char16_t* deflt, int32_t keepEmpty);

/* Both return 0, or E_FAIL. A null text is stored as the empty one.
 *   chars   all characters, inner and last terminators included */
VX_EXPORT HRESULT VxSetMetricString(HVXMETRIC metric, int32_t id, const char16_t* text);
VX_EXPORT HRESULT VxSetMetricMultiString(HVXMETRIC metric, int32_t id, const char16_t* data, uint32_t chars);

/* ---- Any type */

/* Reads the value that has the bare number as its name, whatever the type asked for. 0;
 * VX_E_BUFFERTOSMALL, with the size needed in *outSize; VX_E_ITEM_NOT_FOUND for none or another type;
 * E_UNEXPECTED without a handle or key. A REG_SZ gets a terminator where it has none: where it fills
 * the buffer its last character is overwritten, with VX_E_BUFFERTOSMALL and 2 more in *outSize. outSize
 * may be null. */
VX_EXPORT HRESULT VxGetMetricAny(HVXMETRIC metric, int32_t id, uint32_t type, void* data, uint32_t size,
                                 uint32_t* outSize);

/* 0 where the metric exists with that type, else 1: a status, no truth value. */
VX_EXPORT HRESULT VxDoesMetricExist(HVXMETRIC metric, int32_t id, uint32_t type);

/* 0; 1 without a handle or key; E_FAIL where nothing was deleted. The type of the second has no effect. */
VX_EXPORT HRESULT VxDeleteMetric(HVXMETRIC metric, int32_t id, uint32_t type);
VX_EXPORT HRESULT VxDeleteMetricUsingName(HVXMETRIC metric, const char16_t* name, uint32_t type);

/* Writes the name of a metric to dst, which needs 13 characters; returns its length. For REG_DWORD it is
 * "D5", which is not the name that is stored. */
VX_EXPORT int32_t VxMetricGetName(int32_t id, uint32_t type, char16_t* dst);

/* ---- Keys of the registry */

/* The number of sub-keys; 0 where there is no such key.
 *   nameChars   receives the length of the longest name of one, plus 1; may be null */
VX_EXPORT uint32_t VxRegGetSubKeyCount(HKEY key, const char16_t* subKey, uint32_t* nameChars);

/* Deletes a key with all below it. Returns 1, also where there is none; 0 where something could not be
 * deleted, and for a hive's constant alone. Of a root that is named by an opened handle all below it goes. */
VX_EXPORT int32_t VxRegDeleteKey(HKEY key, const char16_t* subKey);

VX_EXTERN_C_END

#endif
