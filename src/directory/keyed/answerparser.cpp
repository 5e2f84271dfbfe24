#include "directory/keyed/answerparser.h"

#include <algorithm>
#include <expat.h>
#include <memory>
#include <utility>

namespace {
/// How much is handed over at a time. Small enough that a token which never ends is noticed soon, large
/// enough that expat is called seldom.
constexpr qsizetype chunkBytes = 16 * 1024;

QString tagTooLong()
{
    return QStringLiteral("tag too long");
}

/// Expat takes a document for UTF-16 by its first two bytes, whatever encoding it is told.
bool beginsLikeUtf16(const QByteArray &document)
{
    const QByteArray first = document.left(2);
    return first.contains('\0') || first.contains('\xfe') || first.contains('\xff');
}

// Where expat stands. From 2.9 on it counts in 64 bits on every machine, and deprecates what counts in long.
#if XML_MAJOR_VERSION > 2 || XML_MINOR_VERSION >= 9
constexpr auto byteIndex = &XML_GetCurrentByteIndex64;
constexpr auto byteCount = &XML_GetCurrentByteCount64;
constexpr auto lineNumber = &XML_GetCurrentLineNumber64;
#else
constexpr auto byteIndex = &XML_GetCurrentByteIndex;
constexpr auto byteCount = &XML_GetCurrentByteCount;
constexpr auto lineNumber = &XML_GetCurrentLineNumber;
#endif

/// The elements of one document use few sets of attributes: with and without a logo, a current track.
constexpr std::size_t maximumKnownNames = 16;
} // namespace

/// What expat calls; the user data is the AnswerParser.
class AnswerParser::Callbacks
{
public:
    static void XMLCALL startElement(void *userData, const XML_Char *name, const XML_Char **attributes)
    {
        auto &parser = of(userData);
        parser.reportCharacters();
        if (++parser.depth_ > maximumDepth) {
            parser.abort(QStringLiteral("elements nested too deeply"));
            return;
        }
        if (std::cmp_greater(byteCount(parser.expat_), maximumTokenBytes)) {
            parser.abort(tagTooLong());
            return;
        }
        parser.delegate_.parserDidStartElement(parser, name, parser.attributeMap(attributes));
    }

    static void XMLCALL endElement(void *userData, const XML_Char *name)
    {
        auto &parser = of(userData);
        parser.reportCharacters();
        --parser.depth_;
        parser.delegate_.parserDidEndElement(parser, name);
    }

    /// Expat reports a run in pieces, at each line end and each entity; it is put together again. Of a
    /// long run the beginning is enough: it is only ever logged.
    static void XMLCALL characterData(void *userData, const XML_Char *text, int length)
    {
        auto &characters = of(userData).characters_;
        characters.append(text, std::min<qsizetype>(length, maximumTokenBytes - characters.size()));
    }

    static void XMLCALL startDoctype(void *userData, const XML_Char *, const XML_Char *, const XML_Char *,
                                     int)
    {
        of(userData).abort(QStringLiteral("document type declaration refused"));
    }

private:
    static AnswerParser &of(void *userData) { return *static_cast<AnswerParser *>(userData); }
};

bool AnswerParser::parse(const QByteArray &document)
{
    if (beginsLikeUtf16(document)) {
        errorText_ = QStringLiteral("not in UTF-8");
        return false;
    }
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> expat(XML_ParserCreate("UTF-8"),
                                                                             &XML_ParserFree);
    expat_ = expat.get();
    XML_SetUserData(expat.get(), this);
    XML_SetElementHandler(expat.get(), &Callbacks::startElement, &Callbacks::endElement);
    XML_SetCharacterDataHandler(expat.get(), &Callbacks::characterData);
    XML_SetStartDoctypeDeclHandler(expat.get(), &Callbacks::startDoctype);

    auto status = XML_STATUS_OK;
    for (qsizetype fed = 0; status == XML_STATUS_OK && fed <= document.size(); fed += chunkBytes) {
        const qsizetype length = std::min(chunkBytes, document.size() - fed);
        const bool last = fed + chunkBytes > document.size();
        status = XML_Parse(expat.get(), document.constData() + fed, static_cast<int>(length), last ? 1 : 0);
        // Expat stands at the beginning of the token that it could not end yet.
        if (status == XML_STATUS_OK && !last && fed + length - byteIndex(expat.get()) > maximumTokenBytes) {
            abort(tagTooLong());
            status = XML_STATUS_ERROR;
        }
    }

    if (status != XML_STATUS_OK && errorText_.isEmpty()) {
        errorText_ = QStringLiteral("%1 (line %2)")
                         .arg(QString::fromUtf8(XML_ErrorString(XML_GetErrorCode(expat.get()))))
                         .arg(lineNumber(expat.get()));
    }
    expat_ = nullptr;
    if (status != XML_STATUS_OK) {
        return false;
    }
    delegate_.parserDidEndDocument(*this);
    return true;
}

void AnswerParser::abort(const QString &reason)
{
    if (errorText_.isEmpty()) {
        errorText_ = reason;
    }
    XML_StopParser(expat_, XML_FALSE);
}

void AnswerParser::reportCharacters()
{
    if (!characters_.isEmpty()) {
        delegate_.parserFoundCharacters(*this, QString::fromUtf8(characters_));
        characters_.clear();
    }
}

AttributeMap AnswerParser::attributeMap(const char *const *attributes)
{
    QByteArray names;
    QByteArray values;
    for (; *attributes != nullptr; attributes += 2) {
        names.append(attributes[0]).append('\0');
        values.append(attributes[1]).append('\0');
    }
    values.squeeze();
    return {shared(names), values};
}

QByteArray AnswerParser::shared(const QByteArray &names)
{
    const auto known = std::find(knownNames_.begin(), knownNames_.end(), names);
    if (known != knownNames_.end()) {
        return *known;
    }
    if (knownNames_.size() < maximumKnownNames) {
        knownNames_.push_back(names);
    }
    return names;
}

QString AnswerParser::libraryVersion()
{
    const XML_Expat_Version version = XML_ExpatVersionInfo();
    return QStringLiteral("%1.%2.%3").arg(version.major).arg(version.minor).arg(version.micro);
}
