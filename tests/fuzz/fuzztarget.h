// SPDX-License-Identifier: MIT

#pragma once

#include <QApplication>
#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// What every target of the fuzzer defines: it reads the bytes with one of the program's parsers. It
// may not crash, hang, or break a promise that mustHold() states.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/** The bytes as a QByteArray of their own, so that reading beyond them is seen. */
inline QByteArray bytesOf(const uint8_t *data, size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)};
}

/** As the client reads the text of a reply. */
inline QString textOf(const uint8_t *data, size_t size)
{
    return QString::fromUtf8(bytesOf(data, size));
}

/** Stops the program, which the fuzzer takes for a find. */
inline void mustHold(bool condition)
{
    if (!condition)
        std::abort();
}

/**
 * The application object, made once; nothing of it is taken from the fuzzer's own options. It is
 * never deleted: the toolkit's own statics may be gone by then.
 */
inline QApplication &application()
{
    static int count = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static auto *app = new QApplication(count, arguments);
    return *app;
}
