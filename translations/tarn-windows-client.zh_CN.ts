<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>正在准备您的录制文件，请稍候。</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>您的录制文件已就绪。</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>您的录制文件转换失败。</translation>
    </message>
</context>
</TS>
