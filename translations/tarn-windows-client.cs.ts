<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="cs" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Vaše nahrávka se připravuje. Čekejte prosím.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Vaše nahrávka je připravena.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Převod vaší nahrávky se nezdařil.</translation>
    </message>
</context>
</TS>
