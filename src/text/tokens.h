// The tokens that hosts register for print formats.
#pragma once

#include "vx/list.h"

#include <string_view>

namespace vx {

// One item of the token list. The name stands behind the record, the value behind it at the next
// multiple of 4 bytes.
struct PrintToken
{
    uint64_t reserved; // 0
    char16_t* name;
    uint32_t valueLength; // characters, without terminator
    char16_t* value;
};
static_assert(sizeof(PrintToken) == 32);

// Makes the token list if there is none; the kernel's start. False without memory.
bool CreatePrintTokens();
// Drops the list with its tokens; the kernel's end. No other thread may print.
void DestroyPrintTokens();

// Holds the list's lock, if there is a list.
class TokenLock
{
public:
    TokenLock();
    ~TokenLock();
    TokenLock(const TokenLock&) = delete;
    TokenLock& operator=(const TokenLock&) = delete;

    explicit operator bool() const { return list_ != nullptr; }

private:
    tVXLIST* const list_;
};

// A look-up. While it lives no token changes; nothing but copying the value is done meanwhile.
class TokenLookup
{
public:
    explicit TokenLookup(const char16_t* name);

    bool Found() const { return token_ != nullptr; }
    std::u16string_view Value() const { return {token_->value, token_->valueLength}; }

private:
    TokenLock lock_;
    const PrintToken* token_ = nullptr;
};

} // namespace vx
