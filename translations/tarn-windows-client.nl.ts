<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="nl" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Uw opname wordt voorbereid. Even geduld.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Uw opname is klaar.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Het converteren van uw opname is mislukt.</translation>
    </message>
</context>
</TS>
