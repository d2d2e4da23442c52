<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>UpdateTrust</name>
    <message>
        <source>The list of updates is not signed, so it was not used.</source>
        <translation>Die Liste der Updates ist nicht signiert und wurde deshalb nicht verwendet.</translation>
    </message>
    <message>
        <source>The signature of the list of updates cannot be read, so the list was not used.</source>
        <translation>Die Signatur der Liste der Updates ist nicht lesbar, deshalb wurde die Liste nicht verwendet.</translation>
    </message>
    <message>
        <source>The list of updates is signed with an unknown key, so it was not used.</source>
        <translation>Die Liste der Updates ist mit einem unbekannten Schlüssel signiert und wurde deshalb nicht verwendet.</translation>
    </message>
    <message>
        <source>The list of updates was changed after it was signed, so it was not used.</source>
        <translation>Die Liste der Updates wurde nach dem Signieren verändert und deshalb nicht verwendet.</translation>
    </message>
    <message>
        <source>Something was added behind the signature of the list of updates, so the list was not used.</source>
        <translation>Hinter der Signatur der Liste der Updates wurde etwas angefügt, deshalb wurde die Liste nicht verwendet.</translation>
    </message>
    <message>
        <source>The list of updates is older than one that was received before, so it was not used.</source>
        <translation>Die Liste der Updates ist älter als eine früher empfangene und wurde deshalb nicht verwendet.</translation>
    </message>
    <message>
        <source>The list of updates has expired, so it was not used. Please check the date of this computer, or try again later.</source>
        <translation>Die Liste der Updates ist abgelaufen und wurde deshalb nicht verwendet. Bitte prüfen Sie das Datum dieses Computers oder versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>The list of updates is dated in the future, so it was not used. Please check the date of this computer.</source>
        <translation>Das Datum der Liste der Updates liegt in der Zukunft, deshalb wurde die Liste nicht verwendet. Bitte prüfen Sie das Datum dieses Computers.</translation>
    </message>
    <message>
        <source>Verifying the downloaded package...</source>
        <translation>Das heruntergeladene Paket wird geprüft...</translation>
    </message>
    <message>
        <source>Package not installed</source>
        <translation>Paket nicht installiert</translation>
    </message>
    <message>
        <source>The downloaded package is not the one that its publisher announced. It was removed, and nothing was installed.</source>
        <translation>Das heruntergeladene Paket ist nicht das, das sein Herausgeber angekündigt hat. Es wurde gelöscht, und nichts wurde installiert.</translation>
    </message>
    <message>
        <source>The downloaded package cannot be verified, because its publisher did not announce its contents. It was removed, and nothing was installed.</source>
        <translation>Das heruntergeladene Paket kann nicht geprüft werden, weil sein Herausgeber den Inhalt nicht angekündigt hat. Es wurde gelöscht, und nichts wurde installiert.</translation>
    </message>
</context>
</TS>
