<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Se está preparando su grabación. Espere.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Su grabación está lista.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>No se ha podido convertir su grabación.</translation>
    </message>
</context>
</TS>
