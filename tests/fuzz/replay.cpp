// SPDX-License-Identifier: MIT

// Runs a target over files and over changed copies of them, where the compiler brings no fuzzer:
// fuzz_<target> -runs=COUNT FILE|FOLDER...
// It learns nothing from what the target does with them; the changes are the same every time. With
// KAVLOR_FUZZ_SECONDS it goes on beyond COUNT until it has been at it for so long.

#include "fuzztarget.h"

#include <QDeadlineTimer>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>
#include <random>

namespace {

constexpr qint64 second = 1000; // ms

QStringList filesOf(const QString &path)
{
    if (QFileInfo(path).isFile())
        return {path};
    QStringList files;
    QDirIterator entries(path, QDir::Files, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files.append(entries.next());
    files.sort();
    return files;
}

void run(const QByteArray &bytes)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()),
                           static_cast<size_t>(bytes.size()));
}

class Changes
{
public:
    /** A number from 0 up to but not including @p end. */
    qsizetype below(qsizetype end)
    {
        return end > 0 ? static_cast<qsizetype>(m_generator() % static_cast<size_t>(end)) : 0;
    }

    QByteArray changed(QByteArray bytes, const QByteArray &other)
    {
        constexpr int mostChanges = 4;
        constexpr int mostBytes = 16;
        for (qsizetype count = below(mostChanges); count >= 0; --count) {
            const qsizetype place = below(bytes.size());
            const qsizetype length = below(mostBytes);
            switch (below(5)) {
            case 0: // another byte
                bytes.replace(place, 1, QByteArray(1, static_cast<char>(m_generator())));
                break;
            case 1: // one bit
                if (!bytes.isEmpty())
                    bytes[place] = static_cast<char>(bytes.at(place) ^ (1 << below(8)));
                break;
            case 2:
                bytes.remove(place, length);
                break;
            case 3: // twice
                bytes.insert(place, bytes.mid(place, length));
                break;
            default: // a piece of another file
                bytes.insert(place, other.mid(below(other.size()), length));
            }
        }
        return bytes;
    }

private:
    std::mt19937 m_generator;
};

} // namespace

int main(int argc, char *argv[])
{
    int runs = 0;
    QList<QByteArray> contents;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument.startsWith(QLatin1String("-runs="))) {
            runs = argument.section(QLatin1Char('='), 1).toInt();
            continue;
        }
        const QStringList files = filesOf(argument);
        for (const QString &path : files) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "%s: %s\n", qPrintable(path), qPrintable(file.errorString()));
                return EXIT_FAILURE;
            }
            contents.append(file.readAll());
            std::printf("%s\n", qPrintable(path));
            std::fflush(stdout); // the last one named is the one that stopped the program
            run(contents.constLast());
        }
    }
    if (contents.isEmpty())
        return EXIT_FAILURE;

    const QDeadlineTimer end(qEnvironmentVariableIntValue("KAVLOR_FUZZ_SECONDS") * second);
    Changes changes;
    int done = 0;
    for (; done < runs || !end.hasExpired(); ++done) {
        std::printf("change %d\n", done);
        std::fflush(stdout);
        const QByteArray &other = contents.at(changes.below(contents.size()));
        run(changes.changed(contents.at(changes.below(contents.size())), other));
    }
    std::printf("%d files, %d changes\n", static_cast<int>(contents.size()), done);
    return EXIT_SUCCESS;
}
