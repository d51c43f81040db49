// SPDX-License-Identifier: MIT

#pragma once

#include "auctionrecord.h"
#include "uploaddraft.h"

#include <QFrame>
#include <QPointer>
#include <QString>
#include <memory>
#include <optional>

class CHttpTolvex;
class CKavlorUser;
class CProgressiveModel;
class PromptedField;

namespace Ui {
class CUploadMediaController;
}

/**
 * The upload wizard: a member picks a photo or clip, describes it, files it under a category, sets
 * prices, checks the summary and sends the auction to the service.
 *
 * A content frame of the root window. Its pages take the place of its description area, one at a
 * time. It deletes itself when the member leaves: after a success it has emitted uploadComplete(),
 * in every other case it has asked the root for the home screen. The user is not owned.
 *
 * What is entered is kept as the member's draft until the service has it; the first page offers to
 * take up one that is there.
 */
class CUploadMediaController : public QFrame
{
    Q_OBJECT

public:
    CUploadMediaController(CKavlorUser *user, QWidget *parent);
    ~CUploadMediaController() override;

    /** Whether the member may still choose the media: on the first page. */
    bool canOpenMedia() const;
    /** Takes the file as if the member had chosen it on the first page. */
    void openMedia(const QString &path);

signals:
    void pictureIsChosen(QString aFileName, bool aVideo = false);
    /** The media is chosen and shown; its description comes next. */
    void descriptionToBeShown();
    /** The auction is created and the member has read so; comes once. */
    void uploadComplete();
    /** The upload has failed and the member was told why. */
    void uploadCancel();

public slots:
    void showNotificationsOptions();
    void descriptionPosChanged();
    void captionPosChanged(int aOld = -1, int aNew = -1);
    void chooseMediaClick();
    void changeMedia(const QString &aFileName, bool aVideo = false);
    void doneClick();
    void categorized(int aCategory);
    void createAuction();
    void pricesSet(int aReserve, int aBuyItNow, int aStart);
    void showDescription();
    void backClicked();
    void cancelClicked();
    void requestDone(const QString &aResponse, const QString &aError);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    enum Step { ChoosingMedia, Describing, Categorizing, Pricing, Confirming, Uploading };

    void sayPrompts();
    void retranslate();
    void connectForm();
    void connectRequest();
    void setPercentage(int percentage);
    void sayProgress(const QString &text);
    void showPage(QFrame *page);
    void retire(QFrame *page);
    bool inform(const QString &text);
    QString startFolder() const;
    void settleLayout();
    void offerDraft();
    void takeUpDraft();
    void keepDraft();

    CKavlorUser *m_user;
    QPointer<CHttpTolvex> m_request;
    CProgressiveModel *m_progress;
    std::unique_ptr<Ui::CUploadMediaController> m_ui;
    CAuctionRecord m_record;
    const std::optional<UploadDraft> m_draft; // none without a root window
    Step m_step = ChoosingMedia;
    QPointer<QFrame> m_page;
    bool m_uploading = false;
    bool m_placed = false; // the record is on auction
    bool m_leaving = false;
    PromptedField *m_caption = nullptr; // children of their fields
    PromptedField *m_description = nullptr;
    QString m_chooserText; // the prompt over the preview
};
