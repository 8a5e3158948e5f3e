#include "platform/propertylists/PropertyListFormats.h"
#include "platform/propertylists/PropertyListScalars.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <optional>
#include <utility>

namespace tavrin::plist {

namespace {

constexpr std::size_t trailerSize = 32;
constexpr std::size_t unfoldedLimit = 4 * sizeLimit;

struct Fault {
    std::string message;
};

/// Throws Fault inside; read() turns it into the result.
class BinaryReader {
  public:
    explicit BinaryReader(std::string_view bytes) : content(bytes) {}

    PropertyList::Result read() {
        try {
            readTrailer();
            return valueOf(topObject, 0);
        } catch (Fault& fault) {
            return PropertyListError{std::move(fault.message)};
        }
    }

  private:
    struct Marker {
        unsigned kind;
        unsigned info;
        std::size_t next; ///< the offset behind the marker
    };

    [[noreturn]] static void fail(std::string message) { throw Fault{std::move(message)}; }

    void readTrailer() {
        if (content.size() < binaryMark.size() + trailerSize)
            fail("the binary property list is cut off");
        const std::size_t trailer = content.size() - trailerSize;
        offsetSize = number(trailer + 6, 1);
        referenceSize = number(trailer + 7, 1);
        objectCount = number(trailer + 8, 8);
        topObject = number(trailer + 16, 8);
        tableStart = number(trailer + 24, 8);
        const bool sizesAreSound =
            offsetSize >= 1 && offsetSize <= 8 && referenceSize >= 1 && referenceSize <= 8;
        if (!sizesAreSound || tableStart < binaryMark.size() || tableStart > trailer ||
            objectCount > (trailer - tableStart) / offsetSize)
            fail("the trailer of the binary property list is damaged");
    }

    /// Big-endian, at most eight bytes, within the file.
    std::uint64_t number(std::size_t at, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(content[at + i]);
        return value;
    }

    /// Objects lie before the offset table.
    void require(std::size_t at, std::size_t size) const {
        if (at > tableStart || size > tableStart - at)
            fail("an object of the binary property list is cut off");
    }

    Marker markerOf(std::uint64_t object) const {
        if (object >= objectCount)
            fail("a reference of the binary property list leads nowhere");
        const std::size_t at = number(tableStart + object * offsetSize, offsetSize);
        if (at < binaryMark.size())
            fail("an offset of the binary property list leads nowhere");
        require(at, 1);
        const unsigned byte = static_cast<unsigned char>(content[at]);
        return {byte >> 4, byte & 15, at + 1};
    }

    /// The length of a sequence: in the marker, or in an integer behind it.
    std::size_t lengthOf(Marker& marker) const {
        if (marker.info != 15)
            return marker.info;
        require(marker.next, 1);
        const unsigned byte = static_cast<unsigned char>(content[marker.next]);
        if (byte >> 4 != 1 || (byte & 15) > 3)
            fail("a length of the binary property list is damaged");
        const std::size_t size = std::size_t{1} << (byte & 15);
        require(marker.next + 1, size);
        const std::uint64_t length = number(marker.next + 1, size);
        marker.next += 1 + size;
        if (length > content.size())
            fail("an object of the binary property list is cut off");
        return length;
    }

    void count(std::size_t bytes) {
        unfolded += bytes;
        if (++values > valueLimit || unfolded > unfoldedLimit)
            fail("the binary property list unfolds to too many values");
    }

    PropertyValue valueOf(std::uint64_t object, int depth) {
        Marker marker = markerOf(object);
        count(0);
        switch (marker.kind) {
        case 0x0:
            return booleanOf(marker);
        case 0x1:
            return integerOf(marker);
        case 0x2:
            return realOf(marker);
        case 0x3:
            return dateOf(marker);
        case 0x4:
            return dataOf(marker);
        case 0x5:
        case 0x6:
            return textOf(marker);
        case 0xA:
            return arrayOf(marker, depth);
        case 0xD:
            return dictionaryOf(marker, depth);
        }
        fail(fmt::format("the binary property list holds an object of unknown kind {:#x}", marker.kind));
    }

    static PropertyValue booleanOf(const Marker& marker) {
        if (marker.info != 8 && marker.info != 9)
            fail("the binary property list holds an empty value");
        return marker.info == 9;
    }

    PropertyValue integerOf(const Marker& marker) const {
        if (marker.info > 4)
            fail("an integer of the binary property list is too long");
        const std::size_t size = std::size_t{1} << marker.info;
        require(marker.next, size);
        if (size < 16) // shorter ones have no sign
            return static_cast<std::int64_t>(number(marker.next, size));
        const auto high = static_cast<std::int64_t>(number(marker.next, 8));
        const auto low = static_cast<std::int64_t>(number(marker.next + 8, 8));
        if (high != (low < 0 ? -1 : 0))
            fail("an integer of the binary property list is out of range");
        return low;
    }

    PropertyValue realOf(const Marker& marker) const {
        if (marker.info != 2 && marker.info != 3)
            fail("a real number of the binary property list has a wrong length");
        const std::size_t size = std::size_t{1} << marker.info;
        require(marker.next, size);
        const std::uint64_t bits = number(marker.next, size);
        if (size == 4)
            return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
        return std::bit_cast<double>(bits);
    }

    PropertyValue dateOf(const Marker& marker) const {
        if (marker.info != 3)
            fail("a date of the binary property list is damaged");
        require(marker.next, 8);
        const auto seconds = std::bit_cast<double>(number(marker.next, 8));
        if (!std::isfinite(seconds))
            fail("a date of the binary property list is damaged");
        return PropertyDate{seconds};
    }

    PropertyValue dataOf(Marker marker) {
        const std::size_t length = lengthOf(marker);
        require(marker.next, length);
        count(length);
        const std::string_view bytes = content.substr(marker.next, length);
        return PropertyData{{bytes.begin(), bytes.end()}};
    }

    std::u16string textOf(Marker marker) {
        const std::size_t unitSize = marker.kind == 0x6 ? 2 : 1;
        const std::size_t length = lengthOf(marker);
        require(marker.next, length * unitSize);
        count(length * 2);
        std::u16string text;
        text.reserve(length);
        for (std::size_t i = 0; i < length; ++i) {
            const std::uint64_t unit = number(marker.next + i * unitSize, unitSize);
            if (unitSize == 1 && unit > 0x7F)
                fail("a text of the binary property list is not ASCII");
            text += static_cast<char16_t>(unit);
        }
        return text;
    }

    std::string keyOf(std::uint64_t object) {
        const Marker marker = markerOf(object);
        if (marker.kind != 0x5 && marker.kind != 0x6)
            fail("a key of the binary property list is no text");
        const std::u16string key = textOf(marker);
        if (!isXmlText(key))
            fail("a key of the binary property list is no proper text");
        return text::toUtf8(key);
    }

    std::uint64_t reference(std::size_t start, std::size_t index) const {
        return number(start + index * referenceSize, referenceSize);
    }

    /// The length of a container whose references, `perItem` for each item, lie in the file.
    std::size_t itemCount(Marker& marker, int depth, std::size_t perItem) const {
        if (depth >= depthLimit)
            fail("the binary property list is nested too deeply, or holds itself");
        const std::size_t length = lengthOf(marker);
        require(marker.next, length * perItem * referenceSize);
        return length;
    }

    PropertyValue arrayOf(Marker marker, int depth) {
        const std::size_t length = itemCount(marker, depth, 1);
        PropertyArray array;
        for (std::size_t i = 0; i < length; ++i)
            array.push_back(valueOf(reference(marker.next, i), depth + 1));
        return array;
    }

    PropertyValue dictionaryOf(Marker marker, int depth) {
        const std::size_t length = itemCount(marker, depth, 2);
        PropertyDictionary dictionary;
        for (std::size_t i = 0; i < length; ++i) {
            std::string key = keyOf(reference(marker.next, i));
            if (dictionary.contains(key))
                fail(fmt::format("a key of the binary property list is given twice: {}", key));
            dictionary.emplace(std::move(key), valueOf(reference(marker.next, length + i), depth + 1));
        }
        return dictionary;
    }

    std::string_view content;
    std::size_t offsetSize = 0;
    std::size_t referenceSize = 0;
    std::uint64_t objectCount = 0;
    std::uint64_t topObject = 0;
    std::size_t tableStart = 0;
    std::size_t values = 0;
    std::size_t unfolded = 0;
};

} // namespace

PropertyList::Result readBinary(std::string_view bytes) { return BinaryReader(bytes).read(); }

} // namespace tavrin::plist
