#pragma once

#include "directory/directorysource.h"
#include "directory/keyed/answerparser.h"
#include "http/jsonfecther.h"

#include <functional>
#include <memory>

/// Where the directory is asked, with which developer key, and where its stations are tuned in to.
struct DirectoryService
{
    /// Ends in "/".
    QString baseAddress = QStringLiteral("http://api.shoutcast.com/");
    QString developerKey = QStringLiteral("Rk4TnW8pLq2ZbX7m");
    /// Scheme and host of the tune-in endpoint, without a trailing "/".
    QString tuneInBaseAddress = QStringLiteral("http://yp.shoutcast.com");
};

/// The client of a directory that is asked with a developer key and answers in XML; holds its latest answer.
///
/// Everything runs on the thread that the object lives in, parsing included. A successful answer is
/// delivered, and therefore parsed, twice. How a station is reached is told by the last tune-in record of the
/// latest answer; see tuneInAddress().
class StationDirectory : public DirectorySource, private AnswerParserDelegate
{
    Q_OBJECT

public:
    /// The text form of the stored result limit; null where none is stored.
    using StoredLimit = std::function<QString()>;

    /// The one kind of answer that is parsed.
    static constexpr int stationListModel = 1;
    static constexpr qsizetype maximumStations = 100'000;

    StationDirectory(DirectoryService service, StoredLimit storedLimit, QObject *parent = nullptr);
    ~StationDirectory() override;

    /// The directory's most popular stations.
    void getTop500();
    /// A search; `query` goes into the address as it stands.
    void getRadioByQuery(const QString &query);
    /// A few stations of the directory's own choice.
    void getRandomStation();

    /// Fetches `address`, percent-escaped once. The answer is parsed as a station list for stationListModel
    /// only; for any other it just empties both lists.
    void executeSouthCastAPI(const QString &address, int model);

    /// What a fetch hands over, each time it does: data replaces both lists, an error empties the station
    /// list.
    void takeAnswer(const FetchOutcome &outcome, int model);

    /// Rebuilds the station list from the raw attributes that a parse has left in it.
    void updateReadWriteData();

    void requestTopStations() override { getTop500(); }
    void requestSearch(const QString &text) override;
    void requestGenre(const QString &genre) override { requestSearch(genre); }
    void requestRandomStations() override { getRandomStation(); }
    void repeatRequest() override;
    DirectoryAnswer answer() const override;
    QString playAddress(const StationEntry &station) const override;
    QString favouriteAddress(const StationEntry &station) const override;

    /// The station list, in the order of the answer.
    const StationList &radioData() const { return radioData_; }
    /// The latest answer's "tunein" elements.
    const QList<AttributeMap> &radiocallbackData500() const { return radiocallbackData500_; }
    /// The parser of the latest answer; null before the first.
    const AnswerParser *parserSC500() const { return parserSC500_.get(); }
    bool xmlError() const { return xmlError_; }

private:
    QString address(const QString &path) const;
    QString limitParameter() const;
    void parse(const QByteArray &answer);
    void showNoStations(DirectoryAnswer::Outcome outcome);

    void parserDidStartElement(AnswerParser &parser, QByteArrayView elementName,
                               const AttributeMap &attributes) override;
    void parserFoundCharacters(AnswerParser &parser, const QString &text) override;
    void parserDidEndElement(AnswerParser &parser, QByteArrayView elementName) override;
    void parserDidEndDocument(AnswerParser &parser) override;

    DirectoryService service_;
    StoredLimit storedLimit_;
    StationList radioData_;
    QList<AttributeMap> radiocallbackData500_;
    std::unique_ptr<AnswerParser> parserSC500_;
    bool xmlError_ = false;
    DirectoryAnswer::Outcome outcome_ = DirectoryAnswer::Outcome::Awaited;
    int loggedRuns_ = 0;
    /// The last request's; empty before the first.
    QString lastAddress_;
};
