// Bytes, streams and texts.
#include "persist/metric.h"
#include "vx/platform/heap.h"
#include "vx/platform/memory.h"

#include <algorithm>
#include <memory>

namespace {

using namespace vx;

struct HeapBlock
{
    void operator()(void* block) const { HeapFree(GetProcessHeap(), 0, block); }
};

HRESULT WriteToStart(IStream* stream, const void* data, uint32_t bytes)
{
    HRESULT status = stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    if (FAILED(status))
        return status;
    ULONG written = 0;
    status = stream->Write(data, bytes, &written);
    if (FAILED(status))
        return status;
    return written == bytes ? S_OK : E_UNEXPECTED;
}

// The block may be smaller than the position, which can lie behind the stream's end.
HRESULT StoreBlock(HVXMETRIC metric, int32_t id, HGLOBAL memory, uint32_t bytes)
{
    void* const data = GlobalLock(memory);
    if (!data)
        return E_UNEXPECTED;
    const HRESULT status =
        GlobalSize(memory) < bytes ? E_UNEXPECTED : VxSetMetricBinary(metric, id, data, bytes);
    GlobalUnlock(memory);
    return status;
}

// Where the text goes; a null buffer has no room.
struct TextBuffer
{
    char16_t* text;
    size_t characters;

    TextBuffer(char16_t* dst, int32_t dstChars)
        : text(dst), characters(dst && dstChars > 0 ? size_t(dstChars) : 0)
    {}
    uint32_t Bytes() const { return uint32_t(std::min<size_t>(characters * sizeof(char16_t), UINT32_MAX)); }
};

int32_t ReadText(HVXMETRIC metric, int32_t id, DWORD type, TextBuffer dst, const char16_t* deflt,
                 bool keepEmpty)
{
    const HKEY key = KeyOf(metric);
    uint32_t size = 0;
    if (key) {
        const Reading reading = ReadValue(key, ValueName::Stored(id, type).Text(), dst.text, dst.Bytes());
        if (reading.Is(type))
            size = reading.bytes;
    }
    ZeroBehind(dst.text, size, dst.Bytes());
    if (size > sizeof(char16_t))
        return int32_t(size / sizeof(char16_t)) - 1;
    if (size != 0 && keepEmpty)
        return 0;
    return deflt ? CopyCut(deflt, dst.text, int32_t(dst.characters)) : 0;
}

} // namespace

uint32_t VxGetMetricBinary(HVXMETRIC metric, int32_t id, void* data, uint32_t size)
{
    uint32_t read = 0;
    const HRESULT status = VxGetMetricBinaryEx(metric, id, data, size, &read);
    if (status == S_OK)
        return read;
    ZeroBehind(data, 0, size);
    return 0;
}

HRESULT VxGetMetricBinaryEx(HVXMETRIC metric, int32_t id, void* data, uint32_t size, uint32_t* outSize)
{
    if (!outSize)
        return E_INVALIDARG;
    const HKEY key = KeyOf(metric);
    if (!key)
        return VX_E_ITEM_NOT_FOUND;
    const Reading reading = ReadValue(key, ValueName(id, u'B').Text(), data, size);
    if (reading.Is(REG_BINARY) || reading.error == ERROR_MORE_DATA) {
        *outSize = reading.bytes;
        ZeroBehind(data, reading.bytes, size);
        return reading.error == ERROR_MORE_DATA ? VX_E_BUFFERTOSMALL : S_OK;
    }
    ZeroBehind(data, 0, size);
    *outSize = 0;
    return S_FALSE;
}

HRESULT VxSetMetricBinary(HVXMETRIC metric, int32_t id, const void* data, uint32_t size)
{
    return WriteValue(KeyOf(metric), ValueName(id, u'B').Text(), REG_BINARY, data, size);
}

HRESULT VxGetMetricStream(HVXMETRIC metric, int32_t id, IStream* stream)
{
    if (!stream)
        return E_POINTER;
    uint32_t size = 0;
    VxGetMetricBinaryEx(metric, id, nullptr, 0, &size);
    if (size == 0)
        return E_UNEXPECTED;
    const std::unique_ptr<void, HeapBlock> data(HeapAlloc(GetProcessHeap(), 0, size));
    if (!data)
        return E_OUTOFMEMORY;
    if (VxGetMetricBinary(metric, id, data.get(), size) < size)
        return E_UNEXPECTED;
    return WriteToStart(stream, data.get(), size);
}

HRESULT VxSetMetricStream(HVXMETRIC metric, int32_t id, IStream* stream)
{
    if (!stream)
        return E_POINTER;
    ULARGE_INTEGER position = {};
    HRESULT status = stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_CUR, &position);
    if (FAILED(status))
        return status;
    if (position.QuadPart > VXMETRIC_STREAM_MAX)
        return E_INVALIDARG;
    if (position.QuadPart == 0)
        return E_UNEXPECTED;
    HGLOBAL memory = nullptr;
    status = GetHGlobalFromStream(stream, &memory);
    return FAILED(status) ? status : StoreBlock(metric, id, memory, uint32_t(position.QuadPart));
}

int32_t VxGetMetricStringEx(HVXMETRIC metric, int32_t id, char16_t* dst, int32_t dstChars,
                            const char16_t* deflt, int32_t keepEmpty)
{
    return ReadText(metric, id, REG_SZ, {dst, dstChars}, deflt, keepEmpty != 0);
}

int32_t VxGetMetricMultiStringEx(HVXMETRIC metric, int32_t id, char16_t* dst, int32_t dstChars,
                                 const char16_t* deflt, int32_t keepEmpty)
{
    return ReadText(metric, id, REG_MULTI_SZ, {dst, dstChars}, deflt, keepEmpty != 0);
}

HRESULT VxSetMetricString(HVXMETRIC metric, int32_t id, const char16_t* text)
{
    const char16_t* const stored = text ? text : u"";
    const size_t bytes = (std::u16string_view(stored).size() + 1) * sizeof(char16_t);
    return WriteValue(KeyOf(metric), ValueName(id, u'S').Text(), REG_SZ, stored, uint32_t(bytes));
}

HRESULT VxSetMetricMultiString(HVXMETRIC metric, int32_t id, const char16_t* data, uint32_t chars)
{
    if (chars > UINT32_MAX / sizeof(char16_t))
        return E_FAIL;
    return WriteValue(KeyOf(metric), ValueName(id, u'Z').Text(), REG_MULTI_SZ, data,
                      uint32_t(chars * sizeof(char16_t)));
}
