<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CHttpTolvex</name>
    <message>
        <source>Unable to read a posted file</source>
        <translation>Eine zu sendende Datei kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>Unable to get a server response</source>
        <translation>Es kam keine Antwort vom Server</translation>
    </message>
    <message>
        <source>Unable to create a temp file</source>
        <translation>Eine temporäre Datei kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>Unable to query kavlor server</source>
        <translation>Der kavlor-Server kann nicht gefragt werden</translation>
    </message>
    <message>
        <source>Unable to create a connection</source>
        <translation>Es kann keine Verbindung hergestellt werden</translation>
    </message>
</context>
<context>
    <name>CKavlorAuctionCategorize</name>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>The category chosen so far</source>
        <translation>Die bisher gewählte Kategorie</translation>
    </message>
    <message>
        <source>Categories</source>
        <translation>Kategorien</translation>
    </message>
    <message>
        <source>Clear Selection</source>
        <translation>Auswahl aufheben</translation>
    </message>
</context>
<context>
    <name>CKavlorAuctionConfirm</name>
    <message>
        <source>Summary of the auction</source>
        <translation>Zusammenfassung der Auktion</translation>
    </message>
    <message>
        <source>Create Auction</source>
        <translation>Auktion starten</translation>
    </message>
    <message>
        <source>Not set</source>
        <translation>Nicht festgelegt</translation>
    </message>
    <message>
        <source>USD %1</source>
        <translation>%L1 USD</translation>
    </message>
    <message>
        <source>Please verify data you entered </source>
        <translation>Bitte prüfen Sie Ihre Angaben </translation>
    </message>
    <message>
        <source>Start price:</source>
        <translation>Startpreis:</translation>
    </message>
    <message>
        <source>Reserved:</source>
        <translation>Mindestpreis:</translation>
    </message>
    <message>
        <source>Buy it now:</source>
        <translation>Sofortkauf:</translation>
    </message>
    <message>
        <source>Caption:</source>
        <translation>Titel:</translation>
    </message>
    <message>
        <source>Category:</source>
        <translation>Kategorie:</translation>
    </message>
    <message>
        <source>File:</source>
        <translation>Datei:</translation>
    </message>
</context>
<context>
    <name>CKavlorAuctionCreate</name>
    <message>
        <source>Please enter auction prices below in US$</source>
        <translation>Bitte geben Sie die Preise in US-Dollar ein</translation>
    </message>
    <message>
        <source>Start Price:</source>
        <translation>Startpreis:</translation>
    </message>
    <message>
        <source>Start price in US dollars</source>
        <translation>Startpreis in US-Dollar</translation>
    </message>
    <message>
        <source>Reserve Price:</source>
        <translation>Mindestpreis:</translation>
    </message>
    <message>
        <source>Reserve price in US dollars</source>
        <translation>Mindestpreis in US-Dollar</translation>
    </message>
    <message>
        <source>Not Set</source>
        <translation>Nicht festgelegt</translation>
    </message>
    <message>
        <source>Buy It Now Price:</source>
        <translation>Sofortkaufpreis:</translation>
    </message>
    <message>
        <source>Buy it now price in US dollars</source>
        <translation>Sofortkaufpreis in US-Dollar</translation>
    </message>
    <message>
        <source>Finalize</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Start price must be lower than reserve price, if reserve price is set.</source>
        <translation>Der Startpreis muss niedriger sein als der Mindestpreis, wenn ein Mindestpreis festgelegt ist.</translation>
    </message>
</context>
<context>
    <name>CKavlorCategoryModel</name>
    <message>
        <source>One level up</source>
        <translation>Eine Ebene höher</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1, chosen</source>
        <translation>%1, gewählt</translation>
    </message>
    <message>
        <source>What is in %1</source>
        <translation>Was in %1 enthalten ist</translation>
    </message>
</context>
<context>
    <name>CKavlorCategoryStore</name>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
</context>
<context>
    <name>CKavlorModifyAuction</name>
    <message>
        <source>Image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Picture of the auction</source>
        <translation>Bild der Auktion</translation>
    </message>
    <message>
        <source>Set up new prices for your auction.</source>
        <translation>Legen Sie neue Preise für Ihre Auktion fest.</translation>
    </message>
    <message>
        <source>New Reserved Price</source>
        <translation>Neuer Mindestpreis</translation>
    </message>
    <message>
        <source>New reserved price</source>
        <translation>Neuer Mindestpreis</translation>
    </message>
    <message>
        <source>USD </source>
        <translation>USD </translation>
    </message>
    <message>
        <source>New Buy It Now Price</source>
        <translation>Neuer Sofortkaufpreis</translation>
    </message>
    <message>
        <source>New buy it now price</source>
        <translation>Neuer Sofortkaufpreis</translation>
    </message>
    <message>
        <source>Set New Prices</source>
        <translation>Neue Preise festlegen</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Mein kavlor</translation>
    </message>
    <message>
        <source>One or more errors occured while updating auction.
Please find more info below.
%1
%2</source>
        <translation>Beim Ändern der Auktion sind ein oder mehrere Fehler aufgetreten.
Näheres steht hier.
%1
%2</translation>
    </message>
    <message>
        <source>Your auction has been updated successfully.</source>
        <translation>Ihre Auktion wurde geändert.</translation>
    </message>
</context>
<context>
    <name>CKavlorMyAuctionsController</name>
    <message>
        <source>My auctions</source>
        <translation>Meine Auktionen</translation>
    </message>
    <message>
        <source>Please wait while data is populated...</source>
        <translation>Bitte warten Sie, die Daten werden geladen ...</translation>
    </message>
    <message>
        <source>There is no data to display.</source>
        <translation>Es gibt nichts anzuzeigen.</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Mein kavlor</translation>
    </message>
    <message>
        <source>This auction can no longer be changed.</source>
        <translation>Diese Auktion kann nicht mehr geändert werden.</translation>
    </message>
</context>
<context>
    <name>CKavlorMyAuctionsModel</name>
    <message>
        <source>Picture of %1</source>
        <translation>Bild von %1</translation>
    </message>
    <message>
        <source> The reserve price is met.</source>
        <translation> Der Mindestpreis ist erreicht.</translation>
    </message>
    <message>
        <source>The auction is over.</source>
        <translation>Die Auktion ist beendet.</translation>
    </message>
    <message>
        <source>On sale.</source>
        <translation>Im Verkauf.</translation>
    </message>
    <message>
        <source>%1. %2 views, %3 bids. %4</source>
        <translation>%1. Aufrufe: %2, Gebote: %3. %4</translation>
    </message>
    <message>
        <source>Thumbnail</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
</context>
<context>
    <name>CKavlorSettings</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>My Account</source>
        <translation>Mein Konto</translation>
    </message>
    <message>
        <source>Notifications</source>
        <translation>Benachrichtigungen</translation>
    </message>
    <message>
        <source>Notificatons</source>
        <translation>Benachrichtigungen</translation>
    </message>
</context>
<context>
    <name>CKavlorSplashWindow</name>
    <message>
        <source>kavlor</source>
        <translation>kavlor</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Initializing...</source>
        <translation>Wird gestartet ...</translation>
    </message>
    <message>
        <source>Free software under the MIT License. © 2026 The kavlor developers.</source>
        <translation>Freie Software unter der MIT-Lizenz. © 2026 Die kavlor-Entwickler.</translation>
    </message>
    <message>
        <source>kavlor %1 beta</source>
        <translation>kavlor %1 Beta</translation>
    </message>
    <message>
        <source>requesting terms data</source>
        <translation>Bedingungen werden geholt</translation>
    </message>
    <message>
        <source>validating login</source>
        <translation>Anmeldung wird geprüft</translation>
    </message>
    <message>
        <source>kavlor experienced an error contacting a server.
Please check your network settings.

%1</source>
        <translation>kavlor konnte einen Server nicht erreichen.
Bitte prüfen Sie Ihre Netzwerkeinstellungen.

%1</translation>
    </message>
    <message>
        <source>requesting categories</source>
        <translation>Kategorien werden geholt</translation>
    </message>
    <message>
        <source>requesting user options</source>
        <translation>Ihre Wünsche werden geholt</translation>
    </message>
    <message>
        <source>data is ok, launching...</source>
        <translation>Alles ist da, es geht los ...</translation>
    </message>
    <message>
        <source>requesting countries data</source>
        <translation>Länder werden geholt</translation>
    </message>
</context>
<context>
    <name>CKavlorUser</name>
    <message>
        <source>Username</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>First Name</source>
        <translation>Vorname</translation>
    </message>
    <message>
        <source>Last Name</source>
        <translation>Nachname</translation>
    </message>
    <message>
        <source>Email Address</source>
        <translation>E-Mail-Adresse</translation>
    </message>
    <message>
        <source>Paypal Address</source>
        <translation>PayPal-Adresse</translation>
    </message>
    <message>
        <source>Country ID</source>
        <translation>Länderkürzel</translation>
    </message>
    <message>
        <source>Gender</source>
        <translation>Geschlecht</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>Twitter Username</source>
        <translation>Twitter-Benutzername</translation>
    </message>
    <message>
        <source>Twitter Password</source>
        <translation>Twitter-Passwort</translation>
    </message>
    <message>
        <source>%1 exceeds field length limit(%2)</source>
        <translation>%1 ist zu lang (höchstens %2 Zeichen)</translation>
    </message>
    <message>
        <source>%1 must be defined</source>
        <translation>%1 muss angegeben werden</translation>
    </message>
    <message>
        <source>%1 is invalid</source>
        <translation>%1 ist ungültig</translation>
    </message>
    <message>
        <source>%1 does not match.</source>
        <translation>%1: Die Eingaben stimmen nicht überein.</translation>
    </message>
</context>
<context>
    <name>CModifyAccountController</name>
    <message>
        <source>My Account</source>
        <translation>Mein Konto</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>E-Mail:</translation>
    </message>
    <message>
        <source>E-mail address</source>
        <translation>E-Mail-Adresse</translation>
    </message>
    <message>
        <source>Unlock to change email address</source>
        <translation>Zum Ändern der E-Mail-Adresse freigeben</translation>
    </message>
    <message>
        <source>Don&apos;t change the e-mail address</source>
        <translation>E-Mail-Adresse nicht ändern</translation>
    </message>
    <message>
        <source>Don&apos;t change</source>
        <translation>Nicht ändern</translation>
    </message>
    <message>
        <source>New Password:</source>
        <translation>Neues Passwort:</translation>
    </message>
    <message>
        <source>New password</source>
        <translation>Neues Passwort</translation>
    </message>
    <message>
        <source>Unlock to change password</source>
        <translation>Zum Ändern des Passworts freigeben</translation>
    </message>
    <message>
        <source>Don&apos;t change the password</source>
        <translation>Passwort nicht ändern</translation>
    </message>
    <message>
        <source>Confirm:</source>
        <translation>Bestätigen:</translation>
    </message>
    <message>
        <source>New password again</source>
        <translation>Neues Passwort noch einmal</translation>
    </message>
    <message>
        <source>PayPal:</source>
        <translation>PayPal:</translation>
    </message>
    <message>
        <source>PayPal address</source>
        <translation>PayPal-Adresse</translation>
    </message>
    <message>
        <source>Unlock to change paypal address</source>
        <translation>Zum Ändern der PayPal-Adresse freigeben</translation>
    </message>
    <message>
        <source>Don&apos;t change the PayPal address</source>
        <translation>PayPal-Adresse nicht ändern</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
</context>
<context>
    <name>CNotificationsController</name>
    <message>
        <source>Notification Options</source>
        <translation>Benachrichtigungen</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>E-Mail:</translation>
    </message>
    <message>
        <source>E-mail address that the alerts go to</source>
        <translation>E-Mail-Adresse, an die benachrichtigt wird</translation>
    </message>
    <message>
        <source>Check the Alerts you want to receive when ...:</source>
        <translation>Benachrichtigen Sie mich, wenn ...:</translation>
    </message>
    <message>
        <source>Photo or video is bid on</source>
        <translation>auf ein Foto oder Video geboten wird</translation>
    </message>
    <message>
        <source>Alert when a photo or video is bid on</source>
        <translation>Benachrichtigen, wenn auf ein Foto oder Video geboten wird</translation>
    </message>
    <message>
        <source>Auction is won</source>
        <translation>eine Auktion gewonnen wurde</translation>
    </message>
    <message>
        <source>Alert when an auction is won</source>
        <translation>Benachrichtigen, wenn eine Auktion gewonnen wurde</translation>
    </message>
    <message>
        <source>Photo or video has been viewed</source>
        <translation>ein Foto oder Video angesehen wurde</translation>
    </message>
    <message>
        <source>Alert when a photo or video has been viewed</source>
        <translation>Benachrichtigen, wenn ein Foto oder Video angesehen wurde</translation>
    </message>
    <message>
        <source>Buyer asks a question</source>
        <translation>jemand etwas fragt</translation>
    </message>
    <message>
        <source>Alert when a buyer asks a question</source>
        <translation>Benachrichtigen, wenn jemand etwas fragt</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
</context>
<context>
    <name>CUploadMediaConfirmation</name>
    <message>
        <source>Your media has been successfully placed in the kavlor auction and we are alerting buyers who might be interested. 
Keep up to date on how your image is selling. Select next to set notifications.</source>
        <translation>Ihr Bild oder Video steht jetzt bei kavlor zum Verkauf, und wir benachrichtigen mögliche Käufer. 
Bleiben Sie auf dem Laufenden: Tippen Sie auf „Weiter“ und wählen Sie Ihre Benachrichtigungen.</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
</context>
<context>
    <name>CUploadMediaController</name>
    <message>
        <source>Progress of the upload</source>
        <translation>Fortschritt des Hochladens</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>
select here to
choose a photo
 or video</source>
        <translation>
Hier tippen,
um ein Foto oder
Video zu wählen</translation>
    </message>
    <message>
        <source>Choose a photo or video</source>
        <translation>Foto oder Video wählen</translation>
    </message>
    <message>
        <source>Go on with the upload that was not finished</source>
        <translation>Mit dem nicht beendeten Hochladen fortfahren</translation>
    </message>
    <message>
        <source>Resume upload</source>
        <translation>Fortsetzen</translation>
    </message>
    <message>
        <source>Nothing to enter here</source>
        <translation>Hier ist nichts einzugeben</translation>
    </message>
    <message>
        <source>Enter a caption</source>
        <translation>Geben Sie einen Titel ein</translation>
    </message>
    <message>
        <source>Caption</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Set Category</source>
        <translation>Kategorie wählen</translation>
    </message>
    <message>
        <source>kavlor media</source>
        <translation>kavlor-Medien</translation>
    </message>
    <message>
        <source>Choose Your Image Or Video</source>
        <translation>Bild oder Video wählen</translation>
    </message>
    <message>
        <source>Images (*.png *.jpg *.bmp *.gif *.jpeg *.pbm *.pgm *.ppm *.tiff *.xbm *.xpm);; Video (*.mp4 *.3gp)</source>
        <translation>Bilder (*.png *.jpg *.bmp *.gif *.jpeg *.pbm *.pgm *.ppm *.tiff *.xbm *.xpm);; Videos (*.mp4 *.3gp)</translation>
    </message>
    <message>
        <source>Cannot load %1.</source>
        <translation>%1 kann nicht geladen werden.</translation>
    </message>
    <message>
        <source>%1 is no longer there.</source>
        <translation>%1 ist nicht mehr da.</translation>
    </message>
    <message>
        <source>Please enter a caption.</source>
        <translation>Bitte geben Sie einen Titel ein.</translation>
    </message>
    <message>
        <source>Cannot upload %1.</source>
        <translation>%1 kann nicht hochgeladen werden.</translation>
    </message>
    <message>
        <source>Your auction is already being uploaded as you confirmed it before. Please wait for the result.</source>
        <translation>Ihre Auktion wird schon so hochgeladen, wie Sie sie bestätigt haben. Bitte warten Sie das Ergebnis ab.</translation>
    </message>
    <message>
        <source>You have placed this on auction already. Do you want to place it on auction once more?</source>
        <translation>Sie haben dies schon zur Auktion gegeben. Möchten Sie es noch einmal zur Auktion geben?</translation>
    </message>
    <message>
        <source>Your auction is being uploaded. Please wait.</source>
        <translation>Ihre Auktion wird hochgeladen. Bitte warten Sie.</translation>
    </message>
    <message>
        <source>Media uploading failed. Reason: %1%2</source>
        <translation>Das Hochladen ist fehlgeschlagen. Grund: %1%2</translation>
    </message>
</context>
<context>
    <name>FrameCreateAccount</name>
    <message>
        <source>Create Account</source>
        <translation>Konto anlegen</translation>
    </message>
    <message>
        <source>Account and terms</source>
        <translation>Konto und Bedingungen</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source>Username:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Email Address:</source>
        <translation>E-Mail-Adresse:</translation>
    </message>
    <message>
        <source>This is your primary address to receive notifications</source>
        <translation>An diese Adresse gehen Ihre Benachrichtigungen</translation>
    </message>
    <message>
        <source>E-mail address</source>
        <translation>E-Mail-Adresse</translation>
    </message>
    <message>
        <source>Re-enter Email:</source>
        <translation>E-Mail wiederholen:</translation>
    </message>
    <message>
        <source>Please repeat email</source>
        <translation>Bitte wiederholen Sie die E-Mail-Adresse</translation>
    </message>
    <message>
        <source>E-mail address again</source>
        <translation>E-Mail-Adresse noch einmal</translation>
    </message>
    <message>
        <source>Terms</source>
        <translation>Bedingungen</translation>
    </message>
    <message>
        <source>Terms of service</source>
        <translation>Nutzungsbedingungen</translation>
    </message>
    <message>
        <source>Please wait while a terms of service text is getting populated...</source>
        <translation>Bitte warten Sie, die Nutzungsbedingungen werden geladen ...</translation>
    </message>
    <message>
        <source>I have read the terms above, agreed and accepted.</source>
        <translation>Ich habe die Bedingungen gelesen und nehme sie an.</translation>
    </message>
    <message>
        <source>Create free kavlor account!</source>
        <translation>Kostenloses kavlor-Konto anlegen!</translation>
    </message>
    <message>
        <source>All mandatory fields are filled in</source>
        <translation>Alle Pflichtfelder sind ausgefüllt</translation>
    </message>
    <message>
        <source>Accept Terms of Service</source>
        <translation>Nehmen Sie die Nutzungsbedingungen an</translation>
    </message>
    <message>
        <source>Please wait, while your account is created on site.</source>
        <translation>Bitte warten Sie, Ihr Konto wird angelegt.</translation>
    </message>
    <message>
        <source>HTTP</source>
        <translation>HTTP</translation>
    </message>
    <message>
        <source>Unknown response received: %1 %2.</source>
        <translation>Unbekannte Antwort erhalten: %1 %2.</translation>
    </message>
    <message>
        <source>kavlor experienced at least one error during record submission:
%1
%2</source>
        <translation>Beim Senden Ihrer Angaben ist mindestens ein Fehler aufgetreten:
%1
%2</translation>
    </message>
</context>
<context>
    <name>FrameWelcomeKavlor</name>
    <message>
        <source>New to kavlor?</source>
        <translation>Neu bei kavlor?</translation>
    </message>
    <message>
        <source>Already have an account?</source>
        <translation>Sie haben schon ein Konto?</translation>
    </message>
    <message>
        <source>Create account</source>
        <translation>Konto anlegen</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Create account </source>
        <translation>Konto anlegen bei </translation>
    </message>
    <message>
        <source>Please login to </source>
        <translation>Anmelden bei </translation>
    </message>
</context>
<context>
    <name>HttpTransfer</name>
    <message>
        <source>The reply could not be stored. The device may be full.</source>
        <translation>Die Antwort konnte nicht gespeichert werden. Vielleicht ist das Gerät voll.</translation>
    </message>
    <message>
        <source>Connection closed</source>
        <translation>Verbindung geschlossen</translation>
    </message>
    <message>
        <source>Host %1 not found</source>
        <translation>Rechner %1 nicht gefunden</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Verbindung verweigert</translation>
    </message>
    <message>
        <source>The service could not be reached.</source>
        <translation>Der Dienst ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>The service could not be reached in time.</source>
        <translation>Der Dienst war nicht rechtzeitig erreichbar.</translation>
    </message>
    <message>
        <source>The service sent a reply that cannot be understood.</source>
        <translation>Der Dienst hat eine unverständliche Antwort gesandt.</translation>
    </message>
    <message>
        <source>The connection to the service is not secure.</source>
        <translation>Die Verbindung zum Dienst ist nicht sicher.</translation>
    </message>
    <message>
        <source>The connection to the service was lost.</source>
        <translation>Die Verbindung zum Dienst ist abgebrochen.</translation>
    </message>
</context>
<context>
    <name>KavlorKnownUser</name>
    <message>
        <source>Member</source>
        <translation>Mitglied</translation>
    </message>
    <message>
        <source>What you can do here</source>
        <translation>Was Sie hier tun können</translation>
    </message>
    <message>
        <source>&lt;p&gt;Sell your photos and clips:&lt;/p&gt;&lt;ul&gt;&lt;li&gt;&lt;b&gt;Upload&lt;/b&gt; places a photo or video on auction.&lt;/li&gt;&lt;li&gt;&lt;b&gt;My kavlor&lt;/b&gt; shows your auctions and their bids.&lt;/li&gt;&lt;li&gt;&lt;b&gt;Settings&lt;/b&gt; are for your account and your e-mail alerts.&lt;/li&gt;&lt;/ul&gt;</source>
        <translation>&lt;p&gt;Verkaufen Sie Ihre Fotos und Videos:&lt;/p&gt;&lt;ul&gt;&lt;li&gt;&lt;b&gt;Hochladen&lt;/b&gt; gibt ein Foto oder Video zur Auktion.&lt;/li&gt;&lt;li&gt;&lt;b&gt;Mein kavlor&lt;/b&gt; zeigt Ihre Auktionen und die Gebote.&lt;/li&gt;&lt;li&gt;&lt;b&gt;Einstellungen&lt;/b&gt; sind für Ihr Konto und Ihre Benachrichtigungen.&lt;/li&gt;&lt;/ul&gt;</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Hochladen</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Mein kavlor</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
</context>
<context>
    <name>KavlorLogin</name>
    <message>
        <source>Username</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>I forgot my password</source>
        <translation>Ich habe mein Passwort vergessen</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>I forgot &lt;a href=&quot;%1&quot;&gt;password&lt;/a&gt;</source>
        <translation>Ich habe mein &lt;a href=&quot;%1&quot;&gt;Passwort&lt;/a&gt; vergessen</translation>
    </message>
    <message>
        <source>kavlor authentication failed.</source>
        <translation>Die Anmeldung bei kavlor ist fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Authentication failed:</source>
        <translation>Anmeldung fehlgeschlagen:</translation>
    </message>
</context>
<context>
    <name>MediaPreview</name>
    <message>
        <source>Your media
has been selected.
Please describe
and categorize it.</source>
        <translation>Ihr Video
ist gewählt.
Bitte beschreiben
und einordnen.</translation>
    </message>
</context>
<context>
    <name>NavigationControlableFrame</name>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>NavigationFrame</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Leaves this screen</source>
        <translation>Verlässt diese Seite</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Welcome to</source>
        <translation>Willkommen bei</translation>
    </message>
    <message>
        <source>kavlor</source>
        <translation>kavlor</translation>
    </message>
</context>
<context>
    <name>QHttp</name>
    <message>
        <source>The request holds characters that cannot be sent.</source>
        <translation>Die Anfrage enthält Zeichen, die nicht gesendet werden können.</translation>
    </message>
    <message>
        <source>Request aborted</source>
        <translation>Anfrage abgebrochen</translation>
    </message>
    <message>
        <source>The program is not completely installed: it lacks its HTTP library.</source>
        <translation>Das Programm ist nicht vollständig installiert: seine HTTP-Bibliothek fehlt.</translation>
    </message>
</context>
<context>
    <name>RootViewController</name>
    <message>
        <source>kavlor</source>
        <translation>kavlor</translation>
    </message>
    <message>
        <source>welcome to </source>
        <translation>Willkommen bei </translation>
    </message>
    <message>
        <source>welcome to kavlor!</source>
        <translation>Willkommen bei kavlor!</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>Abmelden</translation>
    </message>
    <message>
        <source>kavlor media</source>
        <translation>kavlor-Medien</translation>
    </message>
    <message>
        <source>%1 will be opened when you are back on the home screen.</source>
        <translation>%1 wird geöffnet, sobald Sie wieder auf der Startseite sind.</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Startseite</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Mein kavlor</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Hochladen</translation>
    </message>
</context>
<context>
    <name>StartOptions</name>
    <message>
        <source>Sells your photos and clips at auction.</source>
        <translation>Verkauft Ihre Fotos und Videos in Auktionen.</translation>
    </message>
    <message>
        <source>A photo or clip to upload.</source>
        <translation>Ein Foto oder Video zum Hochladen.</translation>
    </message>
    <message>
        <source>Only one file can be opened.</source>
        <translation>Es kann nur eine Datei geöffnet werden.</translation>
    </message>
</context>
</TS>
