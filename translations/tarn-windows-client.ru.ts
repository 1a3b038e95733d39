<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Ваша запись подготавливается. Подождите.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Ваша запись готова.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Не удалось преобразовать вашу запись.</translation>
    </message>
</context>
</TS>
