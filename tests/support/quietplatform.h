// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QtGlobal>

/**
 * While it lives, the offscreen platform does not say again and again what it cannot do: after
 * 2,000 lines a test would say nothing any more. Made and gone within a test program's run.
 */
class QuietPlatform
{
public:
    QuietPlatform()
    {
        others() = qInstallMessageHandler(handle);
    }
    ~QuietPlatform()
    {
        qInstallMessageHandler(others());
    }
    Q_DISABLE_COPY_MOVE(QuietPlatform)

private:
    static QtMessageHandler &others()
    {
        static QtMessageHandler handler = nullptr;
        return handler;
    }
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (!text.startsWith(QLatin1String("This plugin does not support")))
            others()(type, context, text);
    }
};
