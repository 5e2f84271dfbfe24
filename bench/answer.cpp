// From a directory answer to a painted table, beside what expat alone needs for as many passes over the same
// bytes.

#include "directory/keyed/stationdirectory.h"
#include "medianmilliseconds.h"
#include "ui/table/rvtableview.h"
#include "ui/table/stationtable.h"

#include <QApplication>
#include <cstdio>
#include <expat.h>
#include <malloc.h>

namespace {
/// A successful answer is delivered twice, and so parsed twice.
constexpr int deliveries = 2;

QByteArray answerOf(int stations)
{
    QByteArray answer = R"(<?xml version="1.0" encoding="UTF-8"?><stationlist><tunein base="/tune.pls"/>)";
    for (int number = 0; number < stations; ++number) {
        const QByteArray text = QByteArray::number(number);
        answer += "<station name=\"Radio \xc3\x89toile " + text +
                  " - the best of the coast\" mt=\"audio/mpeg\" id=\"" + text +
                  R"(" br="128" genre="Jazz" genre2="Soul" logo="http://img.example/)" + text +
                  R"(.png" ct="Some Artist - Some Title of a Song" lc=")" + text + "\"/>";
    }
    return answer + "</stationlist>";
}

void parseWithExpatAlone(const QByteArray &answer)
{
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void *, const XML_Char *, const XML_Char **) {}, [](void *, const XML_Char *) {});
    XML_Parse(parser, answer.constData(), static_cast<int>(answer.size()), 1);
    XML_ParserFree(parser);
}

double heapMegabytes()
{
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    RVTableView view;
    StationTable stations(&view);
    view.setModel(&stations);
    view.resize(1180, 600);
    view.show();

    std::puts("stations   expat, 2 passes   answer to painted table   ratio   sort by name   heap");
    for (const int count : {500, 2'000, 50'000}) {
        const QByteArray answer = answerOf(count);
        const double expat = medianMilliseconds([&answer] {
            for (int delivery = 0; delivery < deliveries; ++delivery) {
                parseWithExpatAlone(answer);
            }
        });
        const double before = heapMegabytes();
        StationDirectory directory({}, [] { return QString(); });
        QObject::connect(&directory, &StationDirectory::answered,
                         [&] { stations.reload(directory.radioData()); });
        const double painted = medianMilliseconds([&] {
            for (int delivery = 0; delivery < deliveries; ++delivery) {
                directory.takeAnswer(answer, StationDirectory::stationListModel);
            }
            view.grab();
        });
        const double heap = heapMegabytes() - before;
        const double sorted = medianMilliseconds([&stations] { stations.sort(1); });
        std::printf("%8d %14.1f ms %22.1f ms %7.2f %11.1f ms %5.1f MB\n", count, expat, painted,
                    painted / expat, sorted, heap);
    }
    return 0;
}
