<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>CameraManagerWindow</name>
    <message>
        <source>Camera</source>
        <translation>Caméra</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Micrologiciel</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>Check for &amp;Updates...</source>
        <translation>Rechercher des mises à &amp;jour...</translation>
    </message>
    <message>
        <source>Help &gt; Check for Updates... looks for something newer.</source>
        <translation>Aide &gt; Rechercher des mises à jour... cherche du nouveau.</translation>
    </message>
</context>
<context>
    <name>DesktopStandIn</name>
    <message>
        <source>The desktop would open %1</source>
        <translation>Le bureau ouvrirait %1</translation>
    </message>
</context>
</TS>
