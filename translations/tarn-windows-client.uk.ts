<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="uk" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Ваш запис готується. Зачекайте.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Ваш запис готовий.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Не вдалося перетворити ваш запис.</translation>
    </message>
</context>
</TS>
