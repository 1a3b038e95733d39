<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="it" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Preparazione della registrazione in corso. Attendere.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>La registrazione è pronta.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>La conversione della registrazione non è riuscita.</translation>
    </message>
</context>
</TS>
