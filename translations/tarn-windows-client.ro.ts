<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ro" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Înregistrarea dvs. este în curs de pregătire. Vă rugăm să așteptați.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Înregistrarea dvs. este gata.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Conversia înregistrării dvs. nu a reușit.</translation>
    </message>
</context>
</TS>
