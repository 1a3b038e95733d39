<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="da" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Din optagelse klargøres. Vent venligst.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Din optagelse er klar.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Konverteringen af din optagelse mislykkedes.</translation>
    </message>
</context>
</TS>
