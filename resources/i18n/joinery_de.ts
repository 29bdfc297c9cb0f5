<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Tolk</name>
    <message>
        <source>Main query</source>
        <translation>Hauptabfrage</translation>
    </message>
    <message>
        <source>Subquery %d</source>
        <translation>Unterabfrage %d</translation>
    </message>
    <message>
        <source>Build &amp;&amp; &amp;run</source>
        <translation>Erstellen &amp;&amp; &amp;ausführen</translation>
    </message>
    <message>
        <source>&amp;Build</source>
        <translation>&amp;Erstellen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Show or hide the object tree</source>
        <translation>Objektbaum ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Show or hide the query preview</source>
        <translation>Abfragevorschau ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Path of query layers</source>
        <translation>Pfad der Abfrageebenen</translation>
    </message>
    <message>
        <source>Clauses of the query</source>
        <translation>Teile der Abfrage</translation>
    </message>
    <message>
        <source>Query preview</source>
        <translation>Abfragevorschau</translation>
    </message>
    <message>
        <source>Cop&amp;y</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the query text to the clipboard</source>
        <translation>Den Abfragetext in die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Double click tree item or drag it here</source>
        <translation>Objekt im Baum doppelklicken oder hierher ziehen</translation>
    </message>
    <message>
        <source>Table Relation</source>
        <translation>Tabellenbeziehung</translation>
    </message>
    <message>
        <source>Field Relation</source>
        <translation>Feldbeziehung</translation>
    </message>
    <message>
        <source>Diagram</source>
        <translation>Diagramm</translation>
    </message>
    <message>
        <source>Database objects</source>
        <translation>Datenbankobjekte</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Add to query</source>
        <translation>Zur Abfrage hinzufügen</translation>
    </message>
    <message>
        <source>Filter objects</source>
        <translation>Objekte filtern</translation>
    </message>
    <message>
        <source>Show only objects whose name contains this text</source>
        <translation>Nur Objekte zeigen, deren Name diesen Text enthält</translation>
    </message>
    <message>
        <source>No loaded object has such a name</source>
        <translation>Kein geladenes Objekt hat einen solchen Namen</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Wird geladen ...</translation>
    </message>
    <message>
        <source>The host kit cannot connect to %s yet.</source>
        <translation>Das Host-Kit kann noch keine Verbindung zu %s herstellen.</translation>
    </message>
    <message>
        <source>No database file is given.</source>
        <translation>Es ist keine Datenbankdatei angegeben.</translation>
    </message>
    <message>
        <source>There is no file %s.</source>
        <translation>Die Datei %s gibt es nicht.</translation>
    </message>
    <message>
        <source>%s is a folder, not a database file.</source>
        <translation>%s ist ein Ordner, keine Datenbankdatei.</translation>
    </message>
    <message>
        <source>%s is not a regular file.</source>
        <translation>%s ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>%s cannot be read: permission denied.</source>
        <translation>%s kann nicht gelesen werden: Zugriff verweigert.</translation>
    </message>
    <message>
        <source>Cannot open %s: %s</source>
        <translation>%s kann nicht geöffnet werden: %s</translation>
    </message>
    <message>
        <source>The database is closed.</source>
        <translation>Die Datenbank ist geschlossen.</translation>
    </message>
    <message>
        <source>The server gave no reason.</source>
        <translation>Der Server hat keinen Grund genannt.</translation>
    </message>
    <message>
        <source>Cannot read the database objects: %s</source>
        <translation>Die Datenbankobjekte können nicht gelesen werden: %s</translation>
    </message>
    <message>
        <source>There is no statement to run.</source>
        <translation>Es gibt keine Anweisung zum Ausführen.</translation>
    </message>
    <message>
        <source>The statement was stopped after %d ms.</source>
        <translation>Die Anweisung wurde nach %d ms angehalten.</translation>
    </message>
    <message>
        <source>The statement left a transaction open; it was rolled back.</source>
        <translation>Die Anweisung ließ eine Transaktion offen; sie wurde zurückgerollt.</translation>
    </message>
    <message>
        <source>The query cannot be read</source>
        <translation>Die Abfrage kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>Several statements in one text are not supported.</source>
        <translation>Mehrere Anweisungen in einem Text werden nicht unterstützt.</translation>
    </message>
    <message>
        <source>Only SELECT statements are supported.</source>
        <translation>Nur SELECT-Anweisungen werden unterstützt.</translation>
    </message>
    <message>
        <source>%s: the text contains a NUL character</source>
        <translation>%s: Der Text enthält ein NUL-Zeichen</translation>
    </message>
    <message>
        <source>the text is longer than 2 GiB</source>
        <translation>Der Text ist länger als 2 GiB</translation>
    </message>
    <message>
        <source>The query cannot be represented:

%s: from here on the text built from it would not mean the same</source>
        <translation>Die Abfrage lässt sich nicht darstellen:

%s: Ab hier würde der daraus gebildete Text nicht dasselbe bedeuten</translation>
    </message>
    <message>
        <source>The query cannot be represented: no text generator is installed to check it with.</source>
        <translation>Die Abfrage lässt sich nicht darstellen: Es ist kein Textgenerator installiert, mit dem sie geprüft würde.</translation>
    </message>
    <message>
        <source>These tables are joined by columns of the same name (USING). Change the join to ON before comparing columns of different names.</source>
        <translation>Diese Tabellen sind über gleichnamige Spalten verbunden (USING). Stellen Sie die Verbindung auf ON um, bevor Sie verschieden benannte Spalten vergleichen.</translation>
    </message>
    <message>
        <source>Row offset</source>
        <translation>Zeilenversatz</translation>
    </message>
    <message>
        <source>Row count</source>
        <translation>Zeilenzahl</translation>
    </message>
    <message>
        <source>offset (optional)</source>
        <translation>Versatz (optional)</translation>
    </message>
    <message>
        <source>row count</source>
        <translation>Zeilenzahl</translation>
    </message>
    <message>
        <source>A whole number from 0 to %d, or nothing.</source>
        <translation>Eine ganze Zahl von 0 bis %d oder nichts.</translation>
    </message>
</context>
</TS>
