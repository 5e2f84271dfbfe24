#include "localradio/sound/taggedsource.h"

#include "localradio/http/parameters.h"

#include <algorithm>
#include <array>

namespace localradio {

namespace {

constexpr qint64 frameHeadSize = 10;

/// Seven bits a byte.
QByteArray tagSize(qint64 bytes)
{
    QByteArray size;
    for (const int shift : {21, 14, 7, 0}) {
        size += static_cast<char>((bytes >> shift) & 0x7f);
    }
    return size;
}

QByteArray frameHead(const char *name, qint64 bytes)
{
    return name + tagSize(bytes - frameHeadSize) + QByteArray(2, '\0');
}

} // namespace

std::optional<LeadingTag> LeadingTag::read(const RequestTarget &target)
{
    static constexpr std::array contents{QLatin1StringView("padding"), QLatin1StringView("picture"),
                                         QLatin1StringView("text")};
    const auto content = choice(target, QLatin1StringView("tag-of"), contents).value_or(0);
    // Room for the head of any frame and what it begins with.
    const auto bytes = wholeNumber(target, QLatin1StringView("tag"), 64, mostBytes);
    if (!bytes) {
        return std::nullopt;
    }
    return LeadingTag{*bytes, std::array{Content::Padding, Content::Picture, Content::Text}[content]};
}

TaggedSource::TaggedSource(const LeadingTag &tag, std::unique_ptr<AudioSource> audio)
    : head_(QByteArray("ID3\4\0\0", 6) + tagSize(tag.bytes))
    , filling_(tag.bytes + head_.size())
    , filler_(tag.content == LeadingTag::Content::Padding ? '\0' : 'x')
    , audio_(std::move(audio))
{
    if (tag.content == LeadingTag::Content::Picture) {
        head_ += frameHead("APIC", tag.bytes) + QByteArray("\0image/png\0\3\0", 13);
    } else if (tag.content == LeadingTag::Content::Text) {
        head_ += frameHead("TIT2", tag.bytes) + QByteArray(1, '\0');
    }
    filling_ -= head_.size();
}

QByteArray TaggedSource::read(qsizetype bytes)
{
    QByteArray read = head_.first(std::min(bytes, head_.size()));
    head_.remove(0, read.size());
    const qint64 part = std::min(bytes - read.size(), filling_);
    read += QByteArray(part, filler_);
    filling_ -= part;
    if (read.size() < bytes) {
        read += audio_->read(bytes - read.size());
    }
    return read;
}

} // namespace localradio
