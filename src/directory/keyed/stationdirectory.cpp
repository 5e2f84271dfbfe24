#include "directory/keyed/stationdirectory.h"

#include "base/displaytext.h"
#include "base/exception.h"
#include "base/rvobject.h"
#include "directory/keyed/tuneinaddress.h"
#include "http/address.h"

#include <QLoggingCategory>
#include <QPointer>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcDirectory, "plumtide.directory")

/// How many runs of character data one answer may write to the log; stations are read from attributes, so
/// that more of them say nothing new.
constexpr int maximumLoggedRuns = 1000;
} // namespace

StationDirectory::StationDirectory(DirectoryService service, StoredLimit storedLimit, QObject *parent)
    : DirectorySource(parent)
    , service_(std::move(service))
    , storedLimit_(std::move(storedLimit))
{
}

StationDirectory::~StationDirectory() = default;

void StationDirectory::getTop500()
{
    executeSouthCastAPI(address(QStringLiteral("legacy/Top500/?")) + limitParameter(), stationListModel);
}

void StationDirectory::getRadioByQuery(const QString &query)
{
    executeSouthCastAPI(address(QStringLiteral("legacy/stationsearch?")) + QLatin1StringView("&search=") +
                            query + limitParameter(),
                        stationListModel);
}

void StationDirectory::getRandomStation()
{
    executeSouthCastAPI(address(QStringLiteral("station/randomstations?")) + QLatin1StringView("&f=xml") +
                            limitParameter(),
                        stationListModel);
}

void StationDirectory::executeSouthCastAPI(const QString &address, int model)
{
    xmlError_ = false;
    if (model == stationListModel) {
        lastAddress_ = address;
    }
    Q_EMIT busyChanged(true);
    Q_EMIT statusChanged(QStringLiteral("Downloading data"));

    JSonFecther::create()->asynchRequest(urlFromAddress(address), QString(), std::nullopt,
                                         [self = QPointer(this), model](const FetchOutcome &outcome) {
                                             if (self) {
                                                 self->takeAnswer(outcome, model);
                                             }
                                         });
}

void StationDirectory::takeAnswer(const FetchOutcome &outcome, int model)
{
    Q_EMIT busyChanged(false);
    if (const auto *error = std::get_if<HttpError>(&outcome)) {
        // The status line keeps saying what was tried; the reason is for the log.
        qCWarning(lcDirectory).noquote()
            << "no answer from the directory:" << displayText(error->description);
        showNoStations(DirectoryAnswer::Outcome::NoAnswer);
        return;
    }
    Q_EMIT statusChanged(QStringLiteral("Download Complete"));
    radioData_.clear();
    radiocallbackData500_.clear();
    if (model == stationListModel) {
        parse(std::get<QByteArray>(outcome));
    }
}

void StationDirectory::updateReadWriteData()
{
    try {
        StationList entries;
        entries.reserve(radioData_.size());
        for (const StationEntry &raw : std::as_const(radioData_)) {
            entries.append(raw.withNumbers());
        }
        radioData_ = std::move(entries);
        outcome_ = DirectoryAnswer::Outcome::Read;
        Q_EMIT answered();
    } catch (const Exception &) {
        // Whoever shows the list could not take it: better none than half of one.
        showNoStations(DirectoryAnswer::Outcome::Unusable);
    }
}

void StationDirectory::requestSearch(const QString &text)
{
    getRadioByQuery(RVObject::airAPIFormatStyle(text));
}

void StationDirectory::repeatRequest()
{
    if (lastAddress_.isEmpty()) {
        getTop500();
    } else {
        // A copy: it is replaced within.
        executeSouthCastAPI(QString(lastAddress_), stationListModel);
    }
}

DirectoryAnswer StationDirectory::answer() const
{
    DirectoryAnswer answer;
    answer.outcome = outcome_;
    answer.stations = radioData_;
    return answer;
}

QString StationDirectory::playAddress(const StationEntry &station) const
{
    return tuneInAddress(service_.tuneInBaseAddress, radiocallbackData500_, station);
}

QString StationDirectory::favouriteAddress(const StationEntry &station) const
{
    return droppedStationAddress(service_.tuneInBaseAddress, radiocallbackData500_, station);
}

QString StationDirectory::address(const QString &path) const
{
    return service_.baseAddress + path + QLatin1StringView("k=") + service_.developerKey;
}

QString StationDirectory::limitParameter() const
{
    const QString limit = storedLimit_();
    return limit.isNull() ? QString() : QLatin1StringView("&limit=") + limit;
}

void StationDirectory::parse(const QByteArray &answer)
{
    parserSC500_ = std::make_unique<AnswerParser>(static_cast<AnswerParserDelegate &>(*this));
    loggedRuns_ = 0;
    if (!parserSC500_->parse(answer)) {
        qCWarning(lcDirectory).noquote()
            << "the directory's answer is not usable:" << parserSC500_->errorText();
        radiocallbackData500_.clear();
        showNoStations(DirectoryAnswer::Outcome::Unusable);
    }
}

void StationDirectory::showNoStations(DirectoryAnswer::Outcome outcome)
{
    radioData_ = {};
    outcome_ = outcome;
    Q_EMIT answered();
}

void StationDirectory::parserDidStartElement(AnswerParser &parser, QByteArrayView elementName,
                                             const AttributeMap &attributes)
{
    if (elementName.isNull()) {
        xmlError_ = true;
        return;
    }
    if (radioData_.size() == maximumStations || radiocallbackData500_.size() == maximumStations) {
        parser.abort(QStringLiteral("too many stations"));
        return;
    }
    if (elementName == "station") {
        radioData_.append(StationEntry(attributes));
        xmlError_ = false;
    } else if (elementName == "tunein") {
        radiocallbackData500_.append(attributes);
    }
}

void StationDirectory::parserFoundCharacters(AnswerParser &parser, const QString &text)
{
    if (&parser == parserSC500_.get() && ++loggedRuns_ <= maximumLoggedRuns) {
        qCInfo(lcDirectory).noquote() << "en2" << displayText(text);
    }
}

void StationDirectory::parserDidEndElement(AnswerParser &, QByteArrayView)
{
    // Stations are whole when they begin: they carry attributes only.
}

void StationDirectory::parserDidEndDocument(AnswerParser &)
{
    if (xmlError_) {
        showNoStations(DirectoryAnswer::Outcome::Unusable);
    } else {
        updateReadWriteData();
    }
}
