// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "multipartreader.h"

namespace {

struct Outcome
{
    QString error;
    QByteArray media;
    QString mediaName;
    int fields = 0;
    QString caption;

    bool operator==(const Outcome &other) const
    {
        return error == other.error && media == other.media && mediaName == other.mediaName
            && fields == other.fields && caption == other.caption;
    }
};

Outcome outcomeOf(const QByteArray &bytes, qsizetype pieceSize)
{
    constexpr qint64 maxMediaBytes = 4096;
    constexpr qint64 maxHeldBytes = 2LL * 1024 * 1024;
    Outcome outcome;
    MultipartReader reader(QByteArrayLiteral("BOUNDARY"), maxMediaBytes,
                           [&outcome](const QByteArray &part) {
                               outcome.media += part;
                               return true;
                           });
    for (qsizetype from = 0; from < bytes.size(); from += pieceSize) {
        reader.feed(bytes.mid(from, pieceSize));
        mustHold(reader.heldBytes() <= maxHeldBytes);
    }
    reader.finish();
    mustHold(outcome.media.size() <= maxMediaBytes);
    outcome.error = reader.error();
    outcome.mediaName = reader.mediaName();
    outcome.fields = reader.fields().count();
    outcome.caption = reader.fields().text(QStringLiteral("Description"));
    return outcome;
}

} // namespace

// The body of an upload. What comes out does not depend on the pieces in which it arrives: the
// first byte says how large they are.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes = bytesOf(data + 1, size - 1);
    const Outcome whole = outcomeOf(bytes, qMax<qsizetype>(bytes.size(), 1));
    const Outcome pieces = outcomeOf(bytes, data[0] + 1);
    mustHold(whole.error.isEmpty() == pieces.error.isEmpty());
    if (whole.error.isEmpty())
        mustHold(whole == pieces);
    return 0;
}
