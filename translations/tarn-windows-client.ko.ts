<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>녹화를 준비하고 있습니다. 잠시 기다려 주세요.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>녹화가 준비되었습니다.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>녹화를 변환하지 못했습니다.</translation>
    </message>
</context>
</TS>
