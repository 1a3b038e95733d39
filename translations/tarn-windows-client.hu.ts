<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="hu" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>A felvétel előkészítése folyamatban van. Kérjük, várjon.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>A felvétel elkészült.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>A felvétel átalakítása nem sikerült.</translation>
    </message>
</context>
</TS>
