// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "replyimage.h"

#include <QFile>
#include <QTemporaryDir>

// The picture of a reply, as it lies in the temporary file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    application();
    static const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("reply")));
    mustHold(file.open(QIODevice::WriteOnly));
    file.write(bytesOf(data, size));
    file.close();
    const QImage image = readReplyImage(file.fileName());
    constexpr int most = 220;
    mustHold(image.width() <= most && image.height() <= most);
    return 0;
}
