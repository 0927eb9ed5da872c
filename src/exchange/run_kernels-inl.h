// The run kernels of a codec, by the steps of one form. Included where they are to be compiled: among the plain forms, and
// in each vector target's namespace.
template <class Steps>
struct KernelsBy
{
    template <class TheCodec, bool kExact>
    static void Read(void* pixels, const uint8_t* row, int64_t bit, int32_t count, const tVXXCHG& x)
    {
        ReadRun<TheCodec, kExact, Steps>(pixels, row, bit, count, x);
    }
    template <class TheCodec>
    static void Write(uint8_t* row, int64_t bit, const void* pixels, int32_t count, const tVXXCHG& x)
    {
        WriteRun<TheCodec, Steps>(row, bit, pixels, count, x);
    }
    template <class TheCodec>
    static void ToBytes(uint32_t* words, const uint8_t* at, int32_t count, const tVXXCHG& x)
    {
        ReadBytes<TheCodec, Steps>(words, at, count, x);
    }
    template <class TheCodec, Widening kWidening>
    static void FromBytes(uint8_t* at, const uint32_t* words, int32_t count, const tVXXCHG& x)
    {
        WriteBytes<TheCodec, kWidening, Steps>(at, words, count, x);
    }
    template <class TheCodec, bool kExact>
    static void ToGray(uint16_t* words, const uint8_t* at, int32_t count, const tVXXCHG& x)
    {
        ReadGray<TheCodec, kExact, Steps>(words, at, count, x);
    }
    template <class TheCodec>
    static void FromGray(uint8_t* at, const uint16_t* words, int32_t count, const tVXXCHG& x)
    {
        WriteGray<TheCodec, Steps>(at, words, count, x);
    }
};
