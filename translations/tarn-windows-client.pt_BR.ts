<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pt_BR" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Sua gravação está sendo preparada. Aguarde.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Sua gravação está pronta.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Não foi possível converter sua gravação.</translation>
    </message>
</context>
</TS>
