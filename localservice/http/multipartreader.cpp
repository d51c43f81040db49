// SPDX-License-Identifier: MIT

#include "multipartreader.h"

#include <QRegularExpression>

namespace {

constexpr qsizetype maxHeaderBytes = 8L * 1024;
constexpr int maxParts = 100;
constexpr qint64 maxTextBytes = 1024L * 1024;

// The value of a parameter such as name="x" in a part's header line.
QByteArray parameter(const QByteArray &line, const char *name)
{
    const QRegularExpression pattern(
        QStringLiteral("[;,]\\s*%1\\s*=\\s*(?:\"([^\"]*)\"|([^\\s;,\"]+))")
            .arg(QLatin1String(name)),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(QString::fromLatin1(line));
    return (match.captured(1) + match.captured(2)).toLatin1();
}

QByteArray headerLine(const QByteArray &header, const QByteArray &name)
{
    const QList<QByteArray> lines = header.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

} // namespace

MultipartReader::MultipartReader(const QByteArray &boundary, qint64 maxMediaBytes, MediaSink sink)
    : m_delimiter("\r\n--" + boundary)
    , m_maxMediaBytes(maxMediaBytes)
    , m_sink(std::move(sink))
    , m_buffer("\r\n") // the first boundary has no line before it
{
    if (boundary.isEmpty())
        fail(QStringLiteral("the upload names no boundary"));
}

QByteArray MultipartReader::boundaryOf(const QByteArray &contentType)
{
    return parameter(contentType, "boundary");
}

void MultipartReader::feed(const QByteArray &bytes)
{
    if (m_state == Failed || m_state == Epilogue)
        return;
    m_buffer.append(bytes);
    while (step()) { }
}

void MultipartReader::finish()
{
    if (m_state == Preamble)
        fail(QStringLiteral("the upload does not hold its boundary"));
    else if (m_state != Epilogue)
        fail(QStringLiteral("the upload was cut short"));
}

// True when something was read and there may be more to read.
bool MultipartReader::step()
{
    switch (m_state) {
    case Preamble:
        return skipPreamble();
    case AfterBoundary:
        return readBoundaryEnd();
    case PartHeader:
        return readPartHeader();
    case PartBody:
        return readPartBody();
    case Epilogue:
    case Failed:
        break;
    }
    m_buffer.clear();
    return false;
}

bool MultipartReader::skipPreamble()
{
    const qsizetype found = m_buffer.indexOf(m_delimiter);
    if (found < 0) {
        if (m_buffer.size() > maxHeaderBytes)
            return fail(QStringLiteral("the upload does not hold its boundary"));
        return false;
    }
    m_buffer.remove(0, found + m_delimiter.size());
    m_state = AfterBoundary;
    return true;
}

bool MultipartReader::readBoundaryEnd()
{
    if (m_buffer.size() < 2)
        return false;
    if (m_buffer.startsWith("--")) {
        m_state = Epilogue;
    } else if (m_buffer.startsWith("\r\n")) {
        m_buffer.remove(0, 2);
        m_state = PartHeader;
    } else {
        return fail(QStringLiteral("the upload has a broken boundary"));
    }
    return true;
}

bool MultipartReader::readPartHeader()
{
    const qsizetype end = m_buffer.indexOf("\r\n\r\n");
    if (end < 0) {
        if (m_buffer.size() > maxHeaderBytes)
            return fail(QStringLiteral("the upload has a part without an end to its header"));
        return false;
    }
    const QByteArray header = m_buffer.left(end + 2);
    m_textBytes += header.size();
    if (m_textBytes > maxTextBytes || ++m_parts > maxParts)
        return fail(QStringLiteral("the upload has too many parts"));
    m_buffer.remove(0, end + 4);
    m_state = PartBody;
    beginPart(header);
    return true;
}

void MultipartReader::beginPart(const QByteArray &header)
{
    const QByteArray disposition = ';' + headerLine(header, "Content-Disposition");
    const QByteArray length = headerLine(header, "Content-Length");
    m_partName = parameter(disposition, "name");
    m_partText.clear();
    bool isNumber = false;
    m_announcedBytes = length.toLongLong(&isNumber);
    if (!isNumber || m_announcedBytes < 0)
        m_announcedBytes = -1;

    m_isMediaPart = m_partName == "MediaFile";
    if (m_partName.isEmpty()) {
        fail(QStringLiteral("the upload has a part without a name"));
    } else if (m_isMediaPart && m_hasMedia) {
        fail(QStringLiteral("the upload has more than one media"));
    } else if (m_isMediaPart) {
        m_hasMedia = true;
        m_mediaName = QString::fromLatin1(parameter(disposition, "filename"));
    }
}

bool MultipartReader::readPartBody()
{
    const qsizetype found = m_buffer.indexOf(m_delimiter);
    if (found >= 0) {
        take(m_buffer.left(found));
        if (m_state == Failed)
            return true;
        m_buffer.remove(0, found + m_delimiter.size());
        m_state = AfterBoundary;
        endPart();
        return true;
    }
    // The last bytes may be the beginning of a boundary.
    const qsizetype safe = m_buffer.size() - m_delimiter.size();
    if (safe > 0) {
        take(m_buffer.left(safe));
        m_buffer.remove(0, safe);
    }
    return false;
}

void MultipartReader::take(const QByteArray &bytes)
{
    if (!m_isMediaPart) {
        m_textBytes += bytes.size();
        m_partText.append(bytes);
        if (m_textBytes > maxTextBytes)
            fail(QStringLiteral("the upload's texts are too long"));
        return;
    }
    m_mediaBytes += bytes.size();
    if (m_mediaBytes > m_maxMediaBytes)
        fail(QStringLiteral("the media is larger than %1 bytes").arg(m_maxMediaBytes));
    else if (!m_sink(bytes))
        fail(QStringLiteral("the media could not be stored"));
}

void MultipartReader::endPart()
{
    const qint64 size = m_isMediaPart ? m_mediaBytes : m_partText.size();
    if (m_announcedBytes >= 0 && m_announcedBytes != size)
        fail(QStringLiteral("the upload was cut short"));
    else if (!m_isMediaPart)
        m_fields.set(QString::fromLatin1(m_partName), QString::fromLatin1(m_partText));
}

bool MultipartReader::fail(const QString &reason)
{
    if (m_state != Failed)
        m_error = reason;
    m_state = Failed;
    return true;
}

qint64 MultipartReader::heldBytes() const
{
    return m_buffer.size() + m_textBytes;
}

QString MultipartReader::error() const
{
    return m_error;
}

const Fields &MultipartReader::fields() const
{
    return m_fields;
}

bool MultipartReader::hasMedia() const
{
    return m_hasMedia;
}

qint64 MultipartReader::mediaBytes() const
{
    return m_mediaBytes;
}

QString MultipartReader::mediaName() const
{
    return m_mediaName;
}
