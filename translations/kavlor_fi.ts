<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fi" sourcelanguage="en">
<context>
    <name>CHttpTolvex</name>
    <message>
        <source>Unable to read a posted file</source>
        <translation>Lähetettävää tiedostoa ei voi lukea</translation>
    </message>
    <message>
        <source>Unable to get a server response</source>
        <translation>Palvelimelta ei saatu vastausta</translation>
    </message>
    <message>
        <source>Unable to create a temp file</source>
        <translation>Tilapäistiedostoa ei voi luoda</translation>
    </message>
    <message>
        <source>Unable to query kavlor server</source>
        <translation>Kavlor-palvelimelta ei voi kysyä</translation>
    </message>
    <message>
        <source>Unable to create a connection</source>
        <translation>Yhteyttä ei voi muodostaa</translation>
    </message>
</context>
<context>
    <name>CKavlorAuctionCategorize</name>
    <message>
        <source>None</source>
        <translation>Ei mitään</translation>
    </message>
    <message>
        <source>The category chosen so far</source>
        <translation>Tähän mennessä valittu luokka</translation>
    </message>
    <message>
        <source>Categories</source>
        <translation>Luokat</translation>
    </message>
    <message>
        <source>Clear Selection</source>
        <translation>Poista valinta</translation>
    </message>
</context>
<context>
    <name>CKavlorAuctionConfirm</name>
    <message>
        <source>Summary of the auction</source>
        <translation>Huutokaupan yhteenveto</translation>
    </message>
    <message>
        <source>Create Auction</source>
        <translation>Aloita huutokauppa</translation>
    </message>
    <message>
        <source>Not set</source>
        <translation>Ei asetettu</translation>
    </message>
    <message>
        <source>USD %1</source>
        <translation>%L1 USD</translation>
    </message>
    <message>
        <source>Please verify data you entered </source>
        <translation>Tarkista antamasi tiedot </translation>
    </message>
    <message>
        <source>Start price:</source>
        <translation>Lähtöhinta:</translation>
    </message>
    <message>
        <source>Reserved:</source>
        <translation>Pohjahinta:</translation>
    </message>
    <message>
        <source>Buy it now:</source>
        <translation>Osta heti:</translation>
    </message>
    <message>
        <source>Caption:</source>
        <translation>Otsikko:</translation>
    </message>
    <message>
        <source>Category:</source>
        <translation>Luokka:</translation>
    </message>
    <message>
        <source>File:</source>
        <translation>Tiedosto:</translation>
    </message>
</context>
<context>
    <name>CKavlorAuctionCreate</name>
    <message>
        <source>Please enter auction prices below in US$</source>
        <translation>Anna hinnat Yhdysvaltain dollareina</translation>
    </message>
    <message>
        <source>Start Price:</source>
        <translation>Lähtöhinta:</translation>
    </message>
    <message>
        <source>Start price in US dollars</source>
        <translation>Lähtöhinta Yhdysvaltain dollareina</translation>
    </message>
    <message>
        <source>Reserve Price:</source>
        <translation>Pohjahinta:</translation>
    </message>
    <message>
        <source>Reserve price in US dollars</source>
        <translation>Pohjahinta Yhdysvaltain dollareina</translation>
    </message>
    <message>
        <source>Not Set</source>
        <translation>Ei asetettu</translation>
    </message>
    <message>
        <source>Buy It Now Price:</source>
        <translation>Osta heti -hinta:</translation>
    </message>
    <message>
        <source>Buy it now price in US dollars</source>
        <translation>Osta heti -hinta Yhdysvaltain dollareina</translation>
    </message>
    <message>
        <source>Finalize</source>
        <translation>Jatka</translation>
    </message>
    <message>
        <source>Start price must be lower than reserve price, if reserve price is set.</source>
        <translation>Lähtöhinnan on oltava pohjahintaa alempi, jos pohjahinta on asetettu.</translation>
    </message>
</context>
<context>
    <name>CKavlorCategoryModel</name>
    <message>
        <source>One level up</source>
        <translation>Yksi taso ylemmäs</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1, chosen</source>
        <translation>%1, valittu</translation>
    </message>
    <message>
        <source>What is in %1</source>
        <translation>Mitä luokassa %1 on</translation>
    </message>
</context>
<context>
    <name>CKavlorCategoryStore</name>
    <message>
        <source>None</source>
        <translation>Ei mitään</translation>
    </message>
</context>
<context>
    <name>CKavlorModifyAuction</name>
    <message>
        <source>Image</source>
        <translation>Kuva</translation>
    </message>
    <message>
        <source>Picture of the auction</source>
        <translation>Huutokaupan kuva</translation>
    </message>
    <message>
        <source>Set up new prices for your auction.</source>
        <translation>Aseta huutokaupallesi uudet hinnat.</translation>
    </message>
    <message>
        <source>New Reserved Price</source>
        <translation>Uusi pohjahinta</translation>
    </message>
    <message>
        <source>New reserved price</source>
        <translation>Uusi pohjahinta</translation>
    </message>
    <message>
        <source>USD </source>
        <translation>USD </translation>
    </message>
    <message>
        <source>New Buy It Now Price</source>
        <translation>Uusi osta heti -hinta</translation>
    </message>
    <message>
        <source>New buy it now price</source>
        <translation>Uusi osta heti -hinta</translation>
    </message>
    <message>
        <source>Set New Prices</source>
        <translation>Aseta uudet hinnat</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Oma kavlor</translation>
    </message>
    <message>
        <source>One or more errors occured while updating auction.
Please find more info below.
%1
%2</source>
        <translation>Huutokaupan muuttamisessa tapahtui yksi tai useampi virhe.
Lisätietoja alla.
%1
%2</translation>
    </message>
    <message>
        <source>Your auction has been updated successfully.</source>
        <translation>Huutokauppasi on päivitetty.</translation>
    </message>
</context>
<context>
    <name>CKavlorMyAuctionsController</name>
    <message>
        <source>My auctions</source>
        <translation>Omat huutokaupat</translation>
    </message>
    <message>
        <source>Please wait while data is populated...</source>
        <translation>Odota, tietoja haetaan...</translation>
    </message>
    <message>
        <source>There is no data to display.</source>
        <translation>Näytettävää ei ole.</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Oma kavlor</translation>
    </message>
    <message>
        <source>This auction can no longer be changed.</source>
        <translation>Tätä huutokauppaa ei voi enää muuttaa.</translation>
    </message>
</context>
<context>
    <name>CKavlorMyAuctionsModel</name>
    <message>
        <source>Picture of %1</source>
        <translation>Kuva: %1</translation>
    </message>
    <message>
        <source> The reserve price is met.</source>
        <translation> Pohjahinta on saavutettu.</translation>
    </message>
    <message>
        <source>The auction is over.</source>
        <translation>Huutokauppa on päättynyt.</translation>
    </message>
    <message>
        <source>On sale.</source>
        <translation>Myynnissä.</translation>
    </message>
    <message>
        <source>%1. %2 views, %3 bids. %4</source>
        <translation>%1. Katselukertoja: %2, tarjouksia: %3. %4</translation>
    </message>
    <message>
        <source>Thumbnail</source>
        <translation>Pienoiskuva</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Tiedot</translation>
    </message>
</context>
<context>
    <name>CKavlorSettings</name>
    <message>
        <source>Settings</source>
        <translation>Asetukset</translation>
    </message>
    <message>
        <source>My Account</source>
        <translation>Oma tili</translation>
    </message>
    <message>
        <source>Notifications</source>
        <translation>Ilmoitukset</translation>
    </message>
    <message>
        <source>Notificatons</source>
        <translation>Ilmoitukset</translation>
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
        <translation>Edistyminen</translation>
    </message>
    <message>
        <source>Initializing...</source>
        <translation>Käynnistetään...</translation>
    </message>
    <message>
        <source>Free software under the MIT License. © 2026 The kavlor developers.</source>
        <translation>Vapaa ohjelmisto MIT-lisenssillä. © 2026 Kavlorin kehittäjät.</translation>
    </message>
    <message>
        <source>kavlor %1 beta</source>
        <translation>kavlor %1 beta</translation>
    </message>
    <message>
        <source>requesting terms data</source>
        <translation>haetaan ehtoja</translation>
    </message>
    <message>
        <source>validating login</source>
        <translation>tarkistetaan kirjautumista</translation>
    </message>
    <message>
        <source>kavlor experienced an error contacting a server.
Please check your network settings.

%1</source>
        <translation>Kavlor ei saanut yhteyttä palvelimeen.
Tarkista verkkoasetuksesi.

%1</translation>
    </message>
    <message>
        <source>requesting categories</source>
        <translation>haetaan luokkia</translation>
    </message>
    <message>
        <source>requesting user options</source>
        <translation>haetaan asetuksiasi</translation>
    </message>
    <message>
        <source>data is ok, launching...</source>
        <translation>tiedot kunnossa, aloitetaan...</translation>
    </message>
    <message>
        <source>requesting countries data</source>
        <translation>haetaan maita</translation>
    </message>
</context>
<context>
    <name>CKavlorUser</name>
    <message>
        <source>Username</source>
        <translation>Käyttäjätunnus</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Salasana</translation>
    </message>
    <message>
        <source>First Name</source>
        <translation>Etunimi</translation>
    </message>
    <message>
        <source>Last Name</source>
        <translation>Sukunimi</translation>
    </message>
    <message>
        <source>Email Address</source>
        <translation>Sähköpostiosoite</translation>
    </message>
    <message>
        <source>Paypal Address</source>
        <translation>PayPal-osoite</translation>
    </message>
    <message>
        <source>Country ID</source>
        <translation>Maatunnus</translation>
    </message>
    <message>
        <source>Gender</source>
        <translation>Sukupuoli</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Kieli</translation>
    </message>
    <message>
        <source>Twitter Username</source>
        <translation>Twitter-käyttäjätunnus</translation>
    </message>
    <message>
        <source>Twitter Password</source>
        <translation>Twitter-salasana</translation>
    </message>
    <message>
        <source>%1 exceeds field length limit(%2)</source>
        <translation>%1 on liian pitkä (enintään %2 merkkiä)</translation>
    </message>
    <message>
        <source>%1 must be defined</source>
        <translation>%1 on annettava</translation>
    </message>
    <message>
        <source>%1 is invalid</source>
        <translation>%1 on virheellinen</translation>
    </message>
    <message>
        <source>%1 does not match.</source>
        <translation>%1: syötteet eivät täsmää.</translation>
    </message>
</context>
<context>
    <name>CModifyAccountController</name>
    <message>
        <source>My Account</source>
        <translation>Oma tili</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>Sähköposti:</translation>
    </message>
    <message>
        <source>E-mail address</source>
        <translation>Sähköpostiosoite</translation>
    </message>
    <message>
        <source>Unlock to change email address</source>
        <translation>Vapauta vaihtaaksesi sähköpostiosoitteen</translation>
    </message>
    <message>
        <source>Don&apos;t change the e-mail address</source>
        <translation>Älä muuta sähköpostiosoitetta</translation>
    </message>
    <message>
        <source>Don&apos;t change</source>
        <translation>Älä muuta</translation>
    </message>
    <message>
        <source>New Password:</source>
        <translation>Uusi salasana:</translation>
    </message>
    <message>
        <source>New password</source>
        <translation>Uusi salasana</translation>
    </message>
    <message>
        <source>Unlock to change password</source>
        <translation>Vapauta vaihtaaksesi salasanan</translation>
    </message>
    <message>
        <source>Don&apos;t change the password</source>
        <translation>Älä muuta salasanaa</translation>
    </message>
    <message>
        <source>Confirm:</source>
        <translation>Vahvista:</translation>
    </message>
    <message>
        <source>New password again</source>
        <translation>Uusi salasana uudelleen</translation>
    </message>
    <message>
        <source>PayPal:</source>
        <translation>PayPal:</translation>
    </message>
    <message>
        <source>PayPal address</source>
        <translation>PayPal-osoite</translation>
    </message>
    <message>
        <source>Unlock to change paypal address</source>
        <translation>Vapauta vaihtaaksesi PayPal-osoitteen</translation>
    </message>
    <message>
        <source>Don&apos;t change the PayPal address</source>
        <translation>Älä muuta PayPal-osoitetta</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Valmis</translation>
    </message>
</context>
<context>
    <name>CNotificationsController</name>
    <message>
        <source>Notification Options</source>
        <translation>Ilmoitusasetukset</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>Sähköposti:</translation>
    </message>
    <message>
        <source>E-mail address that the alerts go to</source>
        <translation>Sähköpostiosoite, johon ilmoitukset lähetetään</translation>
    </message>
    <message>
        <source>Check the Alerts you want to receive when ...:</source>
        <translation>Valitse, milloin haluat ilmoituksen:</translation>
    </message>
    <message>
        <source>Photo or video is bid on</source>
        <translation>Kuvasta tai videosta tarjotaan</translation>
    </message>
    <message>
        <source>Alert when a photo or video is bid on</source>
        <translation>Ilmoita, kun kuvasta tai videosta tarjotaan</translation>
    </message>
    <message>
        <source>Auction is won</source>
        <translation>Huutokauppa on voitettu</translation>
    </message>
    <message>
        <source>Alert when an auction is won</source>
        <translation>Ilmoita, kun huutokauppa on voitettu</translation>
    </message>
    <message>
        <source>Photo or video has been viewed</source>
        <translation>Kuvaa tai videota on katsottu</translation>
    </message>
    <message>
        <source>Alert when a photo or video has been viewed</source>
        <translation>Ilmoita, kun kuvaa tai videota on katsottu</translation>
    </message>
    <message>
        <source>Buyer asks a question</source>
        <translation>Ostaja kysyy jotain</translation>
    </message>
    <message>
        <source>Alert when a buyer asks a question</source>
        <translation>Ilmoita, kun ostaja kysyy jotain</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Valmis</translation>
    </message>
</context>
<context>
    <name>CUploadMediaConfirmation</name>
    <message>
        <source>Your media has been successfully placed in the kavlor auction and we are alerting buyers who might be interested. 
Keep up to date on how your image is selling. Select next to set notifications.</source>
        <translation>Kuvasi tai videosi on nyt kavlorin huutokaupassa, ja kerromme siitä mahdollisille ostajille. 
Seuraa, miten kauppa käy: valitse ilmoituksesi painamalla Seuraava.</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Seuraava</translation>
    </message>
</context>
<context>
    <name>CUploadMediaController</name>
    <message>
        <source>Progress of the upload</source>
        <translation>Lähetyksen edistyminen</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Esikatselu</translation>
    </message>
    <message>
        <source>
select here to
choose a photo
 or video</source>
        <translation>
Valitse kuva
tai video
tästä</translation>
    </message>
    <message>
        <source>Choose a photo or video</source>
        <translation>Valitse kuva tai video</translation>
    </message>
    <message>
        <source>Go on with the upload that was not finished</source>
        <translation>Jatka kesken jäänyttä lähetystä</translation>
    </message>
    <message>
        <source>Resume upload</source>
        <translation>Jatka lähetystä</translation>
    </message>
    <message>
        <source>Nothing to enter here</source>
        <translation>Tähän ei kirjoiteta mitään</translation>
    </message>
    <message>
        <source>Enter a caption</source>
        <translation>Kirjoita otsikko</translation>
    </message>
    <message>
        <source>Caption</source>
        <translation>Otsikko</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Kuvaus</translation>
    </message>
    <message>
        <source>Set Category</source>
        <translation>Valitse luokka</translation>
    </message>
    <message>
        <source>kavlor media</source>
        <translation>kavlor-media</translation>
    </message>
    <message>
        <source>Choose Your Image Or Video</source>
        <translation>Valitse kuva tai video</translation>
    </message>
    <message>
        <source>Images (*.png *.jpg *.bmp *.gif *.jpeg *.pbm *.pgm *.ppm *.tiff *.xbm *.xpm);; Video (*.mp4 *.3gp)</source>
        <translation>Kuvat (*.png *.jpg *.bmp *.gif *.jpeg *.pbm *.pgm *.ppm *.tiff *.xbm *.xpm);; Videot (*.mp4 *.3gp)</translation>
    </message>
    <message>
        <source>Cannot load %1.</source>
        <translation>Tiedostoa %1 ei voi ladata.</translation>
    </message>
    <message>
        <source>%1 is no longer there.</source>
        <translation>Tiedostoa %1 ei enää ole.</translation>
    </message>
    <message>
        <source>Please enter a caption.</source>
        <translation>Kirjoita otsikko.</translation>
    </message>
    <message>
        <source>Cannot upload %1.</source>
        <translation>Tiedostoa %1 ei voi lähettää.</translation>
    </message>
    <message>
        <source>Your auction is already being uploaded as you confirmed it before. Please wait for the result.</source>
        <translation>Huutokauppaasi lähetetään jo sellaisena kuin vahvistit sen. Odota tulosta.</translation>
    </message>
    <message>
        <source>You have placed this on auction already. Do you want to place it on auction once more?</source>
        <translation>Olet jo asettanut tämän huutokauppaan. Haluatko asettaa sen uudelleen?</translation>
    </message>
    <message>
        <source>Your auction is being uploaded. Please wait.</source>
        <translation>Huutokauppaasi lähetetään. Odota hetki.</translation>
    </message>
    <message>
        <source>Media uploading failed. Reason: %1%2</source>
        <translation>Lähetys epäonnistui. Syy: %1%2</translation>
    </message>
</context>
<context>
    <name>FrameCreateAccount</name>
    <message>
        <source>Create Account</source>
        <translation>Luo tili</translation>
    </message>
    <message>
        <source>Account and terms</source>
        <translation>Tili ja ehdot</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Tili</translation>
    </message>
    <message>
        <source>Username:</source>
        <translation>Käyttäjätunnus:</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Käyttäjätunnus</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Salasana:</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Salasana</translation>
    </message>
    <message>
        <source>Email Address:</source>
        <translation>Sähköpostiosoite:</translation>
    </message>
    <message>
        <source>This is your primary address to receive notifications</source>
        <translation>Tähän osoitteeseen lähetetään ilmoituksesi</translation>
    </message>
    <message>
        <source>E-mail address</source>
        <translation>Sähköpostiosoite</translation>
    </message>
    <message>
        <source>Re-enter Email:</source>
        <translation>Sähköposti uudelleen:</translation>
    </message>
    <message>
        <source>Please repeat email</source>
        <translation>Toista sähköpostiosoite</translation>
    </message>
    <message>
        <source>E-mail address again</source>
        <translation>Sähköpostiosoite uudelleen</translation>
    </message>
    <message>
        <source>Terms</source>
        <translation>Ehdot</translation>
    </message>
    <message>
        <source>Terms of service</source>
        <translation>Käyttöehdot</translation>
    </message>
    <message>
        <source>Please wait while a terms of service text is getting populated...</source>
        <translation>Odota, käyttöehtoja haetaan...</translation>
    </message>
    <message>
        <source>I have read the terms above, agreed and accepted.</source>
        <translation>Olen lukenut yllä olevat ehdot ja hyväksyn ne.</translation>
    </message>
    <message>
        <source>Create free kavlor account!</source>
        <translation>Luo ilmainen kavlor-tili!</translation>
    </message>
    <message>
        <source>All mandatory fields are filled in</source>
        <translation>Kaikki pakolliset kentät on täytetty</translation>
    </message>
    <message>
        <source>Accept Terms of Service</source>
        <translation>Hyväksy käyttöehdot</translation>
    </message>
    <message>
        <source>Please wait, while your account is created on site.</source>
        <translation>Odota, tiliäsi luodaan.</translation>
    </message>
    <message>
        <source>HTTP</source>
        <translation>HTTP</translation>
    </message>
    <message>
        <source>Unknown response received: %1 %2.</source>
        <translation>Saatiin tuntematon vastaus: %1 %2.</translation>
    </message>
    <message>
        <source>kavlor experienced at least one error during record submission:
%1
%2</source>
        <translation>Tietojen lähettämisessä tapahtui ainakin yksi virhe:
%1
%2</translation>
    </message>
</context>
<context>
    <name>FrameWelcomeKavlor</name>
    <message>
        <source>New to kavlor?</source>
        <translation>Uusi kavlorissa?</translation>
    </message>
    <message>
        <source>Already have an account?</source>
        <translation>Onko sinulla jo tili?</translation>
    </message>
    <message>
        <source>Create account</source>
        <translation>Luo tili</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Kirjaudu</translation>
    </message>
    <message>
        <source>Create account </source>
        <translation>Luo tili palveluun </translation>
    </message>
    <message>
        <source>Please login to </source>
        <translation>Kirjaudu palveluun </translation>
    </message>
</context>
<context>
    <name>HttpTransfer</name>
    <message>
        <source>The reply could not be stored. The device may be full.</source>
        <translation>Vastausta ei voitu tallentaa. Laite voi olla täynnä.</translation>
    </message>
    <message>
        <source>Connection closed</source>
        <translation>Yhteys suljettiin</translation>
    </message>
    <message>
        <source>Host %1 not found</source>
        <translation>Palvelinta %1 ei löytynyt</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Yhteys torjuttiin</translation>
    </message>
    <message>
        <source>The service could not be reached.</source>
        <translation>Palveluun ei saatu yhteyttä.</translation>
    </message>
    <message>
        <source>The service could not be reached in time.</source>
        <translation>Palveluun ei saatu yhteyttä ajoissa.</translation>
    </message>
    <message>
        <source>The service sent a reply that cannot be understood.</source>
        <translation>Palvelu lähetti vastauksen, jota ei voi tulkita.</translation>
    </message>
    <message>
        <source>The connection to the service is not secure.</source>
        <translation>Yhteys palveluun ei ole suojattu.</translation>
    </message>
    <message>
        <source>The connection to the service was lost.</source>
        <translation>Yhteys palveluun katkesi.</translation>
    </message>
</context>
<context>
    <name>KavlorKnownUser</name>
    <message>
        <source>Member</source>
        <translation>Jäsen</translation>
    </message>
    <message>
        <source>What you can do here</source>
        <translation>Mitä täällä voi tehdä</translation>
    </message>
    <message>
        <source>&lt;p&gt;Sell your photos and clips:&lt;/p&gt;&lt;ul&gt;&lt;li&gt;&lt;b&gt;Upload&lt;/b&gt; places a photo or video on auction.&lt;/li&gt;&lt;li&gt;&lt;b&gt;My kavlor&lt;/b&gt; shows your auctions and their bids.&lt;/li&gt;&lt;li&gt;&lt;b&gt;Settings&lt;/b&gt; are for your account and your e-mail alerts.&lt;/li&gt;&lt;/ul&gt;</source>
        <translation>&lt;p&gt;Myy kuviasi ja videoitasi:&lt;/p&gt;&lt;ul&gt;&lt;li&gt;&lt;b&gt;Lähetä&lt;/b&gt; asettaa kuvan tai videon huutokauppaan.&lt;/li&gt;&lt;li&gt;&lt;b&gt;Oma kavlor&lt;/b&gt; näyttää huutokauppasi ja niiden tarjoukset.&lt;/li&gt;&lt;li&gt;&lt;b&gt;Asetukset&lt;/b&gt; ovat tiliäsi ja sähköposti-ilmoituksiasi varten.&lt;/li&gt;&lt;/ul&gt;</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Lähetä</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Oma kavlor</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Asetukset</translation>
    </message>
</context>
<context>
    <name>KavlorLogin</name>
    <message>
        <source>Username</source>
        <translation>Käyttäjätunnus</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Käyttäjätunnus</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Salasana</translation>
    </message>
    <message>
        <source>I forgot my password</source>
        <translation>Unohdin salasanani</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Kirjaudu</translation>
    </message>
    <message>
        <source>I forgot &lt;a href=&quot;%1&quot;&gt;password&lt;/a&gt;</source>
        <translation>Unohdin &lt;a href=&quot;%1&quot;&gt;salasanani&lt;/a&gt;</translation>
    </message>
    <message>
        <source>kavlor authentication failed.</source>
        <translation>Kirjautuminen kavloriin epäonnistui.</translation>
    </message>
    <message>
        <source>Authentication failed:</source>
        <translation>Kirjautuminen epäonnistui:</translation>
    </message>
</context>
<context>
    <name>MediaPreview</name>
    <message>
        <source>Your media
has been selected.
Please describe
and categorize it.</source>
        <translation>Videosi
on valittu.
Kuvaile se
ja valitse luokka.</translation>
    </message>
</context>
<context>
    <name>NavigationControlableFrame</name>
    <message>
        <source>Back</source>
        <translation>Takaisin</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>NavigationFrame</name>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
    <message>
        <source>Leaves this screen</source>
        <translation>Poistuu tästä näkymästä</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Edistyminen</translation>
    </message>
    <message>
        <source>Welcome to</source>
        <translation>Tervetuloa, tämä on</translation>
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
        <translation>Pyynnössä on merkkejä, joita ei voi lähettää.</translation>
    </message>
    <message>
        <source>Request aborted</source>
        <translation>Pyyntö keskeytettiin</translation>
    </message>
    <message>
        <source>The program is not completely installed: it lacks its HTTP library.</source>
        <translation>Ohjelmaa ei ole asennettu kokonaan: sen HTTP-kirjasto puuttuu.</translation>
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
        <translation>Tervetuloa, tämä on </translation>
    </message>
    <message>
        <source>welcome to kavlor!</source>
        <translation>Tervetuloa kavloriin!</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>Kirjaudu ulos</translation>
    </message>
    <message>
        <source>kavlor media</source>
        <translation>kavlor-media</translation>
    </message>
    <message>
        <source>%1 will be opened when you are back on the home screen.</source>
        <translation>%1 avataan, kun olet taas alkunäkymässä.</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Asetukset</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Alkuun</translation>
    </message>
    <message>
        <source>My kavlor</source>
        <translation>Oma kavlor</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Lähetä</translation>
    </message>
</context>
<context>
    <name>StartOptions</name>
    <message>
        <source>Sells your photos and clips at auction.</source>
        <translation>Myy kuviasi ja videoitasi huutokaupassa.</translation>
    </message>
    <message>
        <source>A photo or clip to upload.</source>
        <translation>Lähetettävä kuva tai video.</translation>
    </message>
    <message>
        <source>Only one file can be opened.</source>
        <translation>Vain yhden tiedoston voi avata.</translation>
    </message>
</context>
</TS>
