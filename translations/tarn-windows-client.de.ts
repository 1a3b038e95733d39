<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Ihre Aufzeichnung wird vorbereitet. Bitte warten.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Ihre Aufzeichnung ist fertig.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Ihre Aufzeichnung konnte nicht konvertiert werden.</translation>
    </message>
</context>
</TS>
