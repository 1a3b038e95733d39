<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="vi" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Bản ghi của bạn đang được chuẩn bị. Vui lòng đợi.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Bản ghi của bạn đã sẵn sàng.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>Không thể chuyển đổi bản ghi của bạn.</translation>
    </message>
</context>
</TS>
