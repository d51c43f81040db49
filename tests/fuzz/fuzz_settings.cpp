// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "kavloruser.h"
#include "uploaddraft.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    mustHold(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

} // namespace

// The settings of an earlier run, and the draft beside them, as anybody may have left them. After
// that a record is saved, and has to be there as it was.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("kavlor.conf"));
    const QString name = QStringLiteral("m1");
    write(path, bytesOf(data, size));
    write(folder.filePath(QStringLiteral("upload.draft")), bytesOf(data, size));
    UploadDraft(path).load(name);

    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = name;
    fields[CKavlorUser::Password] = QStringLiteral("a b=%1;\\");
    {
        QSettings settings(path, QSettings::IniFormat);
        CKavlorUser user(&settings, nullptr, false, CKavlorUser::defaultFields());
        user.load(settings.value(QStringLiteral("last/USERID")).toString());
        user.load(name);
        QString message;
        user.validate(QString(), 1, QString(), &message, true);
        CKavlorUser(&settings, nullptr, false, fields).save();
    }
    QSettings settings(path, QSettings::IniFormat);
    CKavlorUser user(&settings, nullptr, false, CKavlorUser::defaultFields());
    user.load(name);
    for (int field = 0; field < CKavlorUser::fieldCount; ++field)
        mustHold(user.field(static_cast<CKavlorUser::Field>(field)) == fields[field]);
    return 0;
}
