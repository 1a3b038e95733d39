<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>録画を準備しています。お待ちください。</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>録画の準備ができました。</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>録画を変換できませんでした。</translation>
    </message>
</context>
</TS>
