#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace pipespec::platform {

// A text in 16 bytes: up to 15 characters in place, a longer one on the
// heap. Every attribute keeps a name and a value, mostly short codes such as
// "VFCD" or "DN100"; in place they cost no allocation and half the room of a
// std::string, which is most of what a million attributes weigh.
class CompactText {
public:
    CompactText() noexcept { setInPlaceSize(0); }
    // Converts implicitly, as std::string does.
    CompactText(std::string_view text) { assignText(text); }
    CompactText(const CompactText& other) : CompactText(other.view()) {}
    CompactText(CompactText&& other) noexcept : bytes_(other.bytes_) { other.setInPlaceSize(0); }
    CompactText& operator=(const CompactText& other)
    {
        CompactText copy(other);
        swap(copy);
        return *this;
    }
    CompactText& operator=(CompactText&& other) noexcept
    {
        swap(other);
        return *this;
    }
    ~CompactText() { release(); }

    std::string_view view() const noexcept
    {
        if (!onHeap()) return {bytes_.data(), inPlaceSize()};
        return {heapData(), heapSize()};
    }
    operator std::string_view() const noexcept { return view(); }
    std::string str() const { return std::string(view()); }
    bool empty() const noexcept { return view().empty(); }
    friend bool operator==(const CompactText& text, std::string_view other) noexcept { return text.view() == other; }
    friend std::string operator+(std::string left, const CompactText& right) { return left.append(right.view()); }

    void swap(CompactText& other) noexcept { std::swap(bytes_, other.bytes_); }

private:
    static constexpr std::size_t kInPlace = 15;
    // The last byte: the size of a text in place, or kOnHeap. A text on the
    // heap keeps its address in bytes 0-7 and its size in bytes 8-11.
    static constexpr unsigned char kOnHeap = 0xFF;
    static constexpr std::size_t kMark = 15;
    static constexpr std::size_t kSizeAt = 8;

    bool onHeap() const noexcept { return static_cast<unsigned char>(bytes_[kMark]) == kOnHeap; }
    std::size_t inPlaceSize() const noexcept { return static_cast<unsigned char>(bytes_[kMark]); }
    void setInPlaceSize(std::size_t size) noexcept { bytes_[kMark] = static_cast<char>(size); }

    char* heapData() const noexcept
    {
        char* data = nullptr;
        std::memcpy(&data, bytes_.data(), sizeof data);
        return data;
    }
    std::uint32_t heapSize() const noexcept
    {
        std::uint32_t size = 0;
        std::memcpy(&size, bytes_.data() + kSizeAt, sizeof size);
        return size;
    }

    void assignText(std::string_view text)
    {
        if (text.size() <= kInPlace) {
            std::memcpy(bytes_.data(), text.data(), text.size());
            setInPlaceSize(text.size());
            return;
        }
        if (text.size() > std::numeric_limits<std::uint32_t>::max())
            throw std::length_error("a text of over 4 GB cannot be kept");
        const auto size = static_cast<std::uint32_t>(text.size());
        char* data = std::allocator<char>().allocate(size);
        std::memcpy(data, text.data(), size);
        std::memcpy(bytes_.data(), &data, sizeof data);
        std::memcpy(bytes_.data() + kSizeAt, &size, sizeof size);
        bytes_[kMark] = static_cast<char>(kOnHeap);
    }

    void release() noexcept
    {
        if (onHeap()) std::allocator<char>().deallocate(heapData(), heapSize());
    }

    alignas(8) std::array<char, 16> bytes_{};
};

}  // namespace pipespec::platform
