// SPDX-License-Identifier: MIT

// What it costs to choose a large photo: how long the window stands still, in milliseconds of
// processor time, against reading it as small without a window, and the memory that it takes.

#include "costs.h"
#include "kavloruser.h"
#include "processmemory.h"
#include "table.h"
#include "testconstants.h"
#include "uploadmediacontroller.h"

#include <QApplication>
#include <QImageReader>
#include <QLabel>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextStream>

#include <cmath>

namespace {

constexpr double mostMemory = 40; // MB
const QString memoryOption = QStringLiteral("--memory-for");

// A JPEG of so many megapixels, in the proportions of a camera's.
QString makePhoto(const QTemporaryDir &folder, int megapixels)
{
    const int unit = int(std::sqrt(double(megapixels) * 1e6 / 12));
    QImage image(4 * unit, 3 * unit, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, image.width(), image.height());
    sky.setColorAt(0, Qt::darkBlue);
    sky.setColorAt(1, Qt::yellow);
    painter.fillRect(image.rect(), sky);
    for (int i = 0; i < 2000; ++i) {
        painter.fillRect(i * 7919 % image.width(), i * 104729 % image.height(), unit / 20 + 1,
                         unit / 20 + 1, QColor::fromHsv(i % 360, 200, 200));
    }
    painter.end();
    const QString path = folder.filePath(QStringLiteral("%1.jpg").arg(megapixels));
    return image.save(path, "JPEG", 90) ? path : QString();
}

class ShownWizard
{
public:
    ShownWizard()
    {
        m_frame.resize(800, 344);
        m_frame.show();
        QApplication::processEvents();
    }
    void choose(const QString &photo)
    {
        m_frame.changeMedia(photo, false);
        QApplication::processEvents();
    }
    QSize previewSize() const
    {
        return m_frame.findChild<QLabel *>(QStringLiteral("photoLabel"))->size();
    }

private:
    CKavlorUser m_user{nullptr, nullptr, true, CKavlorUser::defaultFields()};
    CUploadMediaController m_frame{&m_user, nullptr};
};

QSize shownSize()
{
    static const int side = ShownWizard().previewSize().height();
    return {side, side};
}

double readBare(const QString &photo)
{
    return costOf([&] {
        QImageReader reader(photo);
        reader.setScaledSize(reader.size().scaled(shownSize(), Qt::KeepAspectRatio));
        reader.read();
    });
}

double choosePhoto(const QString &photo)
{
    ShownWizard wizard;
    return costOf([&] { wizard.choose(photo); });
}

// For a program of its own, which has not had the memory for another photo before.
void tellMemoryForPhoto(const QString &photo)
{
    ShownWizard wizard;
    resetPeakMemory();
    const qint64 before = peakMemory();
    wizard.choose(photo);
    QTextStream(stdout) << peakMemory() - before;
}

double memoryForPhoto(const QString &photo)
{
    const ProgramCost told =
        costOfProgram({QCoreApplication::applicationFilePath(), memoryOption, photo});
    return told.isRight ? told.output.toDouble() / 1024 : -1;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    if (QApplication::arguments().value(1) == memoryOption) {
        tellMemoryForPhoto(QApplication::arguments().value(2));
        return 0;
    }
    Table table(app, QStringLiteral("A photo, in milliseconds of processor time"));
    const QTemporaryDir folder;
    const auto path = [&folder](int megapixels) {
        return folder.filePath(QStringLiteral("%1.jpg").arg(megapixels));
    };
    const QList<int> sizes = table.isTiny() ? QList<int>{1, 2, 3} : QList<int>{3, 12, 48};
    for (const int size : sizes) {
        if (makePhoto(folder, size).isEmpty())
            return 1;
    }
    choosePhoto(path(sizes.constFirst()));
    table.compareSizes(
        QStringLiteral("a photo of %1 megapixels chosen"), 1.3, sizes,
        {QString(), [&](int size) { return choosePhoto(path(size)); }},
        {QStringLiteral("bare scaled reader"), [&](int size) { return readBare(path(size)); }});
    for (const int size : sizes)
        table.limit(QStringLiteral("memory for a photo of %1 megapixels, above idle").arg(size),
                    mostMemory, QStringLiteral("MB"), [&] { return memoryForPhoto(path(size)); });
    return table.exitCode();
}
