// SPDX-License-Identifier: MIT

#include "uploadrequest.h"

#include <QBuffer>

UploadRequest::UploadRequest()
    : fields({{"Username", "m1"},
              {"Password", "secret"},
              {"CategoryID", "400"},
              {"LongDescription", "Taken from the stand."},
              {"Description", "The last goal"},
              {"CaptureLatitude", ""},
              {"CaptureLongitude", ""},
              {"CaptureDate", "20240615203000"},
              {"ReservePrice", "1"},
              {"BuyItNowPrice", ""},
              {"StartPrice", "5"},
              {"SUBMIT", "submit"}})
{
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    media = encoded(picture, "JPEG");
}

void UploadRequest::set(const QByteArray &field, const QByteArray &value)
{
    for (auto &pair : fields) {
        if (pair.first == field)
            pair.second = value;
    }
}

void UploadRequest::remove(const QByteArray &field)
{
    fields.removeIf([&field](const auto &pair) { return pair.first == field; });
}

QByteArray UploadRequest::body() const
{
    const qint64 announced = announcedMediaBytes < 0 ? media.size() : announcedMediaBytes;
    const QByteArray mediaPart = "--" + boundary
        + "\r\nContent-Disposition: form-data; name=\"MediaFile\"; filename=\"" + mediaName
        + "\"\r\nContent-length: " + QByteArray::number(announced)
        + "\r\nContent-Type: application/octet-stream\r\n\r\n" + media;
    QByteArray body;
    bool isMediaWritten = mediaName.isEmpty();
    for (int i = 0; i < fields.size(); ++i) {
        if (i == mediaPosition) {
            body += mediaPart + "\r\n";
            isMediaWritten = true;
        }
        body += "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + fields.at(i).first
            + "\"\r\n\r\n" + fields.at(i).second + "\r\n";
    }
    if (!isMediaWritten)
        body += mediaPart + "\r\n";
    return body + "--" + boundary + "--\r\n";
}

QByteArray UploadRequest::header(const QByteArray &body, const QString &host) const
{
    const QByteArray type =
        contentType.isEmpty() ? "multipart/form-data, boundary=" + boundary : contentType;
    return "POST /tolvex/CreateAuction/ HTTP/1.1\r\nUser-Agent: Nokia N900\r\nHost: "
        + host.toLatin1()
        + "\r\n"
          "Connection: Keep-Alive\r\nAccept-Encoding: gzip,deflate\r\nKeep-Alive: 1800000\r\n"
          "Content-type: "
        + type + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n";
}

QByteArray UploadRequest::bytes(const QString &host) const
{
    const QByteArray content = body();
    return header(content, host) + content;
}

QByteArray UploadRequest::encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}
