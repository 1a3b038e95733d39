<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>正在準備您的錄製檔，請稍候。</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>您的錄製檔已就緒。</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>您的錄製檔轉換失敗。</translation>
    </message>
</context>
</TS>
