#include "favourites/archive/binaryplistform.h"

#include <QChar>
#include <cstdint>
#include <vector>

namespace {
constexpr QByteArrayView header("bplist00");
constexpr qsizetype trailerSize = 32;

/// The upper half of an object's first byte says what it is, the lower half how long.
enum Kind : unsigned {
    booleanKind = 0x0,
    integerKind = 0x1,
    realKind = 0x2,
    dateKind = 0x3,
    dataKind = 0x4,
    asciiKind = 0x5,
    utf16Kind = 0x6,
    uidKind = 0x8,
    arrayKind = 0xA,
    dictionaryKind = 0xD,
};
constexpr unsigned countFollows = 0xF;

bool isText(unsigned kind)
{
    return kind == asciiKind || kind == utf16Kind;
}

/// One examination. Every offset is checked against the end of the objects before it is read.
class Examination
{
public:
    explicit Examination(QByteArrayView bytes)
        : bytes_(bytes)
    {
    }

    std::optional<BinaryPlistForm> run();

private:
    struct Object
    {
        unsigned kind = 0;
        /// The offset of its contents.
        quint64 offset = 0;
        /// Of bytes; of characters in a text; of elements in a container.
        quint64 count = 0;
    };
    struct Container
    {
        Object object;
        int depth = 0;
    };

    quint64 byteAt(quint64 offset) const
    {
        return static_cast<quint64>(static_cast<unsigned char>(bytes_[static_cast<qsizetype>(offset)]));
    }
    quint64 numberAt(quint64 offset, quint64 size) const;
    bool fits(quint64 offset, quint64 count, quint64 size) const
    {
        return offset <= end_ && count <= (end_ - offset) / size;
    }

    bool readTrailer();
    std::optional<Object> objectAt(quint64 index) const;
    bool readCount(Object &object) const;
    bool measure(Object &object, unsigned low) const;
    bool enter(quint64 index, int depth);
    bool enterKey(quint64 index);
    bool enterChildren(const Container &container);
    bool addContents(const Object &object);
    bool isKept(const Object &text) const;

    QByteArrayView bytes_;
    /// Where the objects end and the offset table begins.
    quint64 end_ = 0;
    quint64 offsetSize_ = 0;
    quint64 referenceSize_ = 0;
    quint64 objectCount_ = 0;
    quint64 top_ = 0;

    std::vector<bool> entered_;
    std::vector<Container> pending_;
    quint64 references_ = 0;
    quint64 contents_ = 0;
    BinaryPlistForm form_;
};

std::optional<BinaryPlistForm> Examination::run()
{
    if (!readTrailer()) {
        return std::nullopt;
    }
    entered_.resize(objectCount_);
    if (!enter(top_, 1)) {
        return std::nullopt;
    }
    while (!pending_.empty()) {
        const Container container = pending_.back();
        pending_.pop_back();
        if (!enterChildren(container)) {
            return std::nullopt;
        }
    }
    return form_;
}

quint64 Examination::numberAt(quint64 offset, quint64 size) const
{
    quint64 number = 0;
    for (quint64 index = 0; index < size; ++index) {
        number = number << 8U | byteAt(offset + index);
    }
    return number;
}

bool Examination::readTrailer()
{
    if (bytes_.size() < header.size() + trailerSize || bytes_.size() > BinaryPlistForm::maximumSize ||
        !bytes_.startsWith(header)) {
        return false;
    }
    const auto trailer = static_cast<quint64>(bytes_.size() - trailerSize);
    offsetSize_ = byteAt(trailer + 6);
    referenceSize_ = byteAt(trailer + 7);
    objectCount_ = numberAt(trailer + 8, 8);
    top_ = numberAt(trailer + 16, 8);
    end_ = numberAt(trailer + 24, 8);
    const auto isSize = [](quint64 size) { return size >= 1 && size <= 8; };
    return isSize(offsetSize_) && isSize(referenceSize_) && objectCount_ <= BinaryPlistForm::maximumObjects &&
           end_ >= static_cast<quint64>(header.size()) && end_ <= trailer &&
           objectCount_ <= (trailer - end_) / offsetSize_;
}

std::optional<Examination::Object> Examination::objectAt(quint64 index) const
{
    if (index >= objectCount_) {
        return std::nullopt;
    }
    const quint64 offset = numberAt(end_ + index * offsetSize_, offsetSize_);
    if (offset < static_cast<quint64>(header.size()) || offset >= end_) {
        return std::nullopt;
    }
    const auto marker = static_cast<unsigned>(byteAt(offset));
    Object object{marker >> 4U, offset + 1, 0};
    return measure(object, marker & 0xFU) ? std::optional(object) : std::nullopt;
}

bool Examination::readCount(Object &object) const
{
    if (!fits(object.offset, 1, 1)) {
        return false;
    }
    const quint64 marker = byteAt(object.offset);
    const quint64 size = quint64{1} << (marker & 0x3U);
    if (marker < 0x10 || marker > 0x13 || !fits(object.offset + 1, size, 1)) {
        return false;
    }
    object.count = numberAt(object.offset + 1, size);
    object.offset += 1 + size;
    return true;
}

bool Examination::measure(Object &object, unsigned low) const
{
    const quint64 power = quint64{1} << low;
    switch (object.kind) {
    case booleanKind:
        return low == 8 || low == 9;
    case integerKind:
        object.count = power;
        // libplist keeps the lower half of 16 bytes; nothing that is archived needs the upper one.
        return low <= 4 && fits(object.offset, power, 1) && (low < 4 || numberAt(object.offset, 8) == 0);
    case realKind:
        object.count = power;
        return (low == 2 || low == 3) && fits(object.offset, power, 1);
    case dateKind:
        object.count = power;
        return low == 3 && fits(object.offset, power, 1);
    case uidKind:
        object.count = low + 1;
        return object.count <= 8 && fits(object.offset, object.count, 1) &&
               numberAt(object.offset, object.count) <= UINT32_MAX;
    default:
        break;
    }
    object.count = low;
    if (low == countFollows && !readCount(object)) {
        return false;
    }
    switch (object.kind) {
    case dataKind:
    case asciiKind:
        return fits(object.offset, object.count, 1);
    case utf16Kind:
        return fits(object.offset, object.count, 2);
    case arrayKind:
        return fits(object.offset, object.count, referenceSize_);
    case dictionaryKind:
        return fits(object.offset, object.count, 2 * referenceSize_);
    default:
        return false;
    }
}

bool Examination::enter(quint64 index, int depth)
{
    const std::optional<Object> object = objectAt(index);
    if (!object) {
        return false;
    }
    if (object->kind != arrayKind && object->kind != dictionaryKind) {
        return addContents(*object);
    }
    if (entered_[index] || depth > BinaryPlistForm::maximumDepth) {
        return false;
    }
    entered_[index] = true;
    references_ += object->kind == dictionaryKind ? 2 * object->count : object->count;
    pending_.push_back({*object, depth});
    return references_ <= BinaryPlistForm::maximumReferences;
}

bool Examination::enterKey(quint64 index)
{
    const std::optional<Object> key = objectAt(index);
    // libplist ends the program over a key with a U+0000.
    return key && isText(key->kind) && addContents(*key) && isKept(*key);
}

bool Examination::enterChildren(const Container &container)
{
    const Object &object = container.object;
    quint64 offset = object.offset;
    if (object.kind == dictionaryKind) {
        for (quint64 index = 0; index < object.count; ++index, offset += referenceSize_) {
            if (!enterKey(numberAt(offset, referenceSize_))) {
                return false;
            }
        }
    }
    for (quint64 index = 0; index < object.count; ++index, offset += referenceSize_) {
        if (!enter(numberAt(offset, referenceSize_), container.depth + 1)) {
            return false;
        }
    }
    return true;
}

bool Examination::addContents(const Object &object)
{
    contents_ += object.kind == utf16Kind ? 2 * object.count : object.count;
    if (contents_ > BinaryPlistForm::maximumContents) {
        return false;
    }
    if (form_.textsAreKept && isText(object.kind)) {
        form_.textsAreKept = isKept(object);
    }
    return true;
}

bool Examination::isKept(const Object &text) const
{
    bool afterHigh = false;
    for (quint64 index = 0; index < text.count; ++index) {
        const quint64 unit =
            text.kind == asciiKind ? byteAt(text.offset + index) : numberAt(text.offset + 2 * index, 2);
        const bool isLow = QChar::isLowSurrogate(static_cast<char32_t>(unit));
        if (unit == 0 || isLow != afterHigh || (text.kind == asciiKind && unit > 0x7F)) {
            return false;
        }
        afterHigh = QChar::isHighSurrogate(static_cast<char32_t>(unit));
    }
    return !afterHigh;
}
} // namespace

std::optional<BinaryPlistForm> BinaryPlistForm::examine(QByteArrayView bytes)
{
    return Examination(bytes).run();
}
