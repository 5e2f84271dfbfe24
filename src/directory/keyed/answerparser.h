#pragma once

#include "directory/attributemap.h"

#include <QByteArray>
#include <QString>
#include <vector>

class AnswerParser;
struct XML_ParserStruct;

/// Who is told what an AnswerParser reads, during AnswerParser::parse() and on its thread.
class AnswerParserDelegate
{
public:
    virtual ~AnswerParserDelegate() = default;

    /// `elementName` is qualified as the document has it, and valid during the call only.
    virtual void parserDidStartElement(AnswerParser &parser, QByteArrayView elementName,
                                       const AttributeMap &attributes) = 0;
    /// `text` is a whole run of character data, white space included, between two tags.
    virtual void parserFoundCharacters(AnswerParser &parser, const QString &text) = 0;
    virtual void parserDidEndElement(AnswerParser &parser, QByteArrayView elementName) = 0;
    /// Called last, and only for a document that is well-formed and within the limits.
    virtual void parserDidEndDocument(AnswerParser &parser) = 0;
};

/// Reads one XML document in UTF-8 from memory and tells its delegate what it finds. Another encoding that
/// the document declares is not looked at.
///
/// What comes from a server is bounded: a document type declaration, a tag (or any other token) of more than
/// maximumTokenBytes, or elements nested deeper than maximumDepth end the parse like a document that is not
/// well-formed. So does abort().
class AnswerParser
{
public:
    static constexpr qsizetype maximumTokenBytes = 32 * 1024;
    static constexpr int maximumDepth = 32;

    /// The delegate must outlive the parser.
    explicit AnswerParser(AnswerParserDelegate &delegate)
        : delegate_(delegate)
    {
    }

    /// Whether the document was read to its end. What the delegate was told before a fault stands. To be
    /// called once.
    bool parse(const QByteArray &document);

    /// Ends the running parse; `reason` is for the log.
    void abort(const QString &reason);

    /// The version of expat that is at work, as in "2.5.0".
    static QString libraryVersion();

    /// Why parse() gave false.
    const QString &errorText() const { return errorText_; }

private:
    class Callbacks;

    void reportCharacters();
    AttributeMap attributeMap(const char *const *attributes);
    QByteArray shared(const QByteArray &names);

    AnswerParserDelegate &delegate_;
    QString errorText_;
    XML_ParserStruct *expat_ = nullptr;
    int depth_ = 0;
    QByteArray characters_;
    std::vector<QByteArray> knownNames_;
};
