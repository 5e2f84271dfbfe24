#pragma once

#include "localradio/http/requesttarget.h"
#include "localradio/sound/audiosource.h"

#include <optional>

namespace localradio {

/// An ID3v2 tag that stands before a stream. A value.
struct LeadingTag
{
    enum class Content {
        Padding,
        Picture, ///< one frame with a picture as large as the tag
        Text,    ///< one frame with a title as large as the tag
    };

    /// The most that a tag can say to have after its own head of ten bytes.
    static constexpr qint64 mostBytes = (qint64{1} << 28U) - 1;

    qint64 bytes = 0; ///< after its head
    Content content = Content::Padding;

    /// Reads the parameters "tag" and "tag-of". Throws BadParameter.
    static std::optional<LeadingTag> read(const RequestTarget &target);
};

/// What another source plays, after a tag.
class TaggedSource : public AudioSource
{
public:
    TaggedSource(const LeadingTag &tag, std::unique_ptr<AudioSource> audio);

    QByteArray read(qsizetype bytes) override;

private:
    QByteArray head_; // the tag's and its frame's, as far as they have not been read
    qint64 filling_;  // bytes of the tag after that
    char filler_;
    std::unique_ptr<AudioSource> audio_;
};

} // namespace localradio
