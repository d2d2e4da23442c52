<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>CameraManagerWindow</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Check for &amp;Updates...</source>
        <translation>Nach &amp;Updates suchen...</translation>
    </message>
    <message>
        <source>Help &gt; Check for Updates... looks for something newer.</source>
        <translation>Hilfe &gt; Nach Updates suchen... sucht nach etwas Neuerem.</translation>
    </message>
</context>
<context>
    <name>DesktopStandIn</name>
    <message>
        <source>The desktop would open %1</source>
        <translation>Der Desktop würde %1 öffnen</translation>
    </message>
</context>
</TS>
