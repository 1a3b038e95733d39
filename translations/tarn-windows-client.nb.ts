<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="nb" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Opptaket ditt klargjøres. Vent litt.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Opptaket ditt er klart.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Konverteringen av opptaket ditt mislyktes.</translation>
    </message>
</context>
</TS>
