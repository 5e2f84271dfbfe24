#pragma once

#include "directory/keyed/answerparser.h"
#include "directory/stationentry.h"
#include "http/jsonfecther.h"

#include <QObject>
#include <QUrl>
#include <functional>
#include <memory>

/// Where the directory is asked, and with which developer key.
struct DirectoryService
{
    /// Ends in "/".
    QString baseAddress = QStringLiteral("http://api.shoutcast.com/");
    QString developerKey = QStringLiteral("Rk4TnW8pLq2ZbX7m");
};

/// The directory client: asks the service for stations and holds its latest answer.
///
/// Everything runs on the thread that the object lives in, parsing included. Requests are neither cancelled
/// nor queued: the answer that arrives last decides what the lists hold. A successful answer is delivered,
/// and therefore parsed, twice.
class StationDirectory : public QObject, private AnswerParserDelegate
{
    Q_OBJECT

public:
    /// The text form of the stored result limit; null where none is stored.
    using StoredLimit = std::function<QString()>;

    /// Whether the station in row `left` of the list as it stands goes before the one in row `right`.
    using RowComparison = std::function<bool(qsizetype left, qsizetype right)>;

    /// What came of the request whose answer arrived last.
    enum class Outcome {
        /// None has arrived.
        Awaited,
        /// There is an answer, and it has been read.
        Read,
        NoAnswer,
        /// There is an answer that is no station list.
        Unusable,
    };

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

    /// Sorts the station list in place; stations of which neither is before the other keep their order.
    void sortRadioData(const RowComparison &before);

    /// The station list, in the order of the answer or of the last sort.
    const StationList &radioData() const { return radioData_; }
    /// The latest answer's "tunein" elements.
    const QList<AttributeMap> &radiocallbackData500() const { return radiocallbackData500_; }
    /// The parser of the latest answer; null before the first.
    const AnswerParser *parserSC500() const { return parserSC500_.get(); }
    bool xmlError() const { return xmlError_; }
    /// Up to date when stationsReloaded() is sent.
    Outcome outcome() const { return outcome_; }

Q_SIGNALS:
    /// Whether a request has just begun or an answer just arrived.
    void busyChanged(bool busy);
    void statusChanged(const QString &text);
    /// The station list has been replaced or emptied, and what shows it is to be filled anew.
    void stationsReloaded();

private:
    QString address(const QString &path) const;
    QString limitParameter() const;
    void parse(const QByteArray &answer);
    void showNoStations(Outcome outcome);

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
    Outcome outcome_ = Outcome::Awaited;
    int loggedRuns_ = 0;
};
