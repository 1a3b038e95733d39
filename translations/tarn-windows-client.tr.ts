<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="tr" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Kaydınız hazırlanıyor. Lütfen bekleyin.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Kaydınız hazır.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Kaydınız dönüştürülemedi.</translation>
    </message>
</context>
</TS>
