<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ar" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>يجري إعداد تسجيلك. يُرجى الانتظار.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>تسجيلك جاهز.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>تعذّر تحويل تسجيلك.</translation>
    </message>
</context>
</TS>
