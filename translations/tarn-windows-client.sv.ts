<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="sv" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Din inspelning förbereds. Vänta.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Din inspelning är klar.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Konverteringen av din inspelning misslyckades.</translation>
    </message>
</context>
</TS>
