<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pt_PT" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>A sua gravação está a ser preparada. Aguarde.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>A sua gravação está pronta.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Não foi possível converter a sua gravação.</translation>
    </message>
</context>
</TS>
