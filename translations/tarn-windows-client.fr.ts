<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>PopupConverterToast</name>
    <message>
        <source>Your recording is being prepared. Please wait.</source>
        <translation>Votre enregistrement est en cours de préparation. Veuillez patienter.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Your recording is ready.</source>
        <translation>Votre enregistrement est prêt.</translation>
    </message>
    <message>
        <source>Your recording conversion has failed.</source>
        <translation>La conversion de votre enregistrement a échoué.</translation>
    </message>
</context>
</TS>
