<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pl" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Trwa przygotowywanie nagrania. Proszę czekać.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Nagranie jest gotowe.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Konwersja nagrania nie powiodła się.</translation>
    </message>
</context>
</TS>
