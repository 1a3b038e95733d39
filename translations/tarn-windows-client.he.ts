<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="he" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>ההקלטה שלך בהכנה. נא להמתין.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>ההקלטה שלך מוכנה.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>המרת ההקלטה שלך נכשלה.</translation>
    </message>
</context>
</TS>
