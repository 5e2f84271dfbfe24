<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AddRecordPopover</name>
    <message>
        <source>Add Station</source>
        <translation>Sender hinzufügen</translation>
    </message>
</context>
<context>
    <name>AudioPopover</name>
    <message>
        <source>Sound</source>
        <translation>Klang</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Bass</source>
        <translation>Bass</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>Mitten</translation>
    </message>
    <message>
        <source>Treble</source>
        <translation>Höhen</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>Flat</source>
        <translation>Neutral</translation>
    </message>
    <message>
        <source>Leave the tone as it is sent</source>
        <translation>Den Klang lassen, wie er gesendet wird</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1 dB</source>
        <translation>%1 dB</translation>
    </message>
</context>
<context>
    <name>GenreBox</name>
    <message>
        <source>Unnamed genre</source>
        <translation>Genre ohne Namen</translation>
    </message>
    <message>
        <source>%1 of %2 stars</source>
        <translation>%1 von %2 Sternen</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>GenreGrid</name>
    <message>
        <source>No genre matches.</source>
        <translation>Kein Genre passt.</translation>
    </message>
</context>
<context>
    <name>HistoryPopover</name>
    <message>
        <source>Recent titles</source>
        <translation>Letzte Titel</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy the selected titles, or all of them</source>
        <translation>Die ausgewählten Titel kopieren, oder alle</translation>
    </message>
    <message>
        <source>Save as CSV...</source>
        <translation>Als CSV speichern …</translation>
    </message>
    <message>
        <source>Save all of them as a table for other programs</source>
        <translation>Alle als Tabelle für andere Programme speichern</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alle auswählen</translation>
    </message>
    <message>
        <source>Titles %1</source>
        <translation>Titel %1</translation>
    </message>
    <message>
        <source>Titles appear here as they are heard.</source>
        <translation>Titel erscheinen hier, sobald sie zu hören sind.</translation>
    </message>
    <message>
        <source>Save Titles</source>
        <translation>Titel speichern</translation>
    </message>
    <message>
        <source>Tables (*.csv)</source>
        <translation>Tabellen (*.csv)</translation>
    </message>
    <message>
        <source>Saved.</source>
        <translation>Gespeichert.</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
</context>
<context>
    <name>InfoView</name>
    <message>
        <source>Now playing</source>
        <translation>Es läuft</translation>
    </message>
    <message>
        <source>What plays now</source>
        <translation>Was gerade läuft</translation>
    </message>
    <message>
        <source>Format and bit rate of the sound</source>
        <translation>Format und Bitrate des Klangs</translation>
    </message>
    <message>
        <source>Sound in reserve</source>
        <translation>Vorrat an Klang</translation>
    </message>
    <message>
        <source>Sound that waits to be played</source>
        <translation>Klang, der auf das Abspielen wartet</translation>
    </message>
    <message>
        <source>Sound that waits to be played: a break in the connection is not heard until it runs out</source>
        <translation>Klang, der auf das Abspielen wartet: eine Unterbrechung der Verbindung ist erst zu hören, wenn er verbraucht ist</translation>
    </message>
    <message>
        <source>Recent titles</source>
        <translation>Letzte Titel</translation>
    </message>
    <message>
        <source>%1 %2 kbit/s</source>
        <translation>%1 %2 kbit/s</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>%1 h</source>
        <translation>%1 h</translation>
    </message>
    <message>
        <source>%1 · not verified</source>
        <translation>%1 · nicht geprüft</translation>
    </message>
    <message>
        <source>The server&apos;s certificate could not be verified.</source>
        <translation>Das Zertifikat des Servers konnte nicht geprüft werden.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Player</source>
        <translation>Player</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>The station that plays</source>
        <translation>Der Sender, der läuft</translation>
    </message>
    <message>
        <source>What the player or the directory is doing</source>
        <translation>Was der Player oder das Verzeichnis gerade tut</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Klang</translation>
    </message>
    <message>
        <source>Sound: volume and tone</source>
        <translation>Klang: Lautstärke und Klangfarbe</translation>
    </message>
    <message>
        <source>Add station</source>
        <translation>Sender hinzufügen</translation>
    </message>
    <message>
        <source>Add a station of your own</source>
        <translation>Einen eigenen Sender hinzufügen</translation>
    </message>
    <message>
        <source>Waiting for the directory</source>
        <translation>Warten auf das Verzeichnis</translation>
    </message>
    <message>
        <source>Search stations</source>
        <translation>Sender suchen</translation>
    </message>
    <message>
        <source>Search the directory by name, genre or track</source>
        <translation>Das Verzeichnis nach Name, Genre oder Titel durchsuchen</translation>
    </message>
    <message>
        <source>Stations</source>
        <translation>Sender</translation>
    </message>
    <message>
        <source>Favourites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>&amp;Plumtide</source>
        <translation>&amp;Plumtide</translation>
    </message>
    <message>
        <source>Play&amp;back</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>&amp;Stations</source>
        <translation>&amp;Sender</translation>
    </message>
    <message>
        <source>&amp;Favourites</source>
        <translation>&amp;Favoriten</translation>
    </message>
    <message>
        <source>P&amp;references...</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <source>As the &amp;Desktop</source>
        <translation>Wie die &amp;Arbeitsumgebung</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>Da&amp;rk</source>
        <translation>&amp;Dunkel</translation>
    </message>
    <message>
        <source>Add &amp;Station...</source>
        <translation>&amp;Sender hinzufügen …</translation>
    </message>
    <message>
        <source>Add &amp;Blank Station</source>
        <translation>&amp;Leeren Sender hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Play or Pause</source>
        <translation>&amp;Abspielen oder anhalten</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Stopp</translation>
    </message>
    <message>
        <source>&amp;Louder</source>
        <translation>&amp;Lauter</translation>
    </message>
    <message>
        <source>So&amp;fter</source>
        <translation>L&amp;eiser</translation>
    </message>
    <message>
        <source>&amp;Mute</source>
        <translation>S&amp;tumm</translation>
    </message>
    <message>
        <source>S&amp;ound...</source>
        <translation>&amp;Klang …</translation>
    </message>
    <message>
        <source>&amp;Find...</source>
        <translation>S&amp;uchen …</translation>
    </message>
    <message>
        <source>&amp;Top Stations</source>
        <translation>&amp;Top-Sender</translation>
    </message>
    <message>
        <source>&amp;Add to Favourites</source>
        <translation>Zu den &amp;Favoriten</translation>
    </message>
    <message>
        <source>&amp;Copy Name</source>
        <translation>&amp;Namen kopieren</translation>
    </message>
    <message>
        <source>Copy A&amp;ddress</source>
        <translation>Adresse k&amp;opieren</translation>
    </message>
    <message>
        <source>&amp;Play Favourite</source>
        <translation>&amp;Favoriten abspielen</translation>
    </message>
    <message>
        <source>&amp;Details...</source>
        <translation>&amp;Details …</translation>
    </message>
    <message>
        <source>Move &amp;Left</source>
        <translation>Nach l&amp;inks</translation>
    </message>
    <message>
        <source>Move Ri&amp;ght</source>
        <translation>Nach &amp;rechts</translation>
    </message>
    <message>
        <source>Copy &amp;Address</source>
        <translation>Adresse k&amp;opieren</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Undo Removal</source>
        <translation>Entfernen r&amp;ückgängig machen</translation>
    </message>
    <message>
        <source>Sa&amp;ve Favourites</source>
        <translation>Favoriten s&amp;peichern</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Asking the directory...</source>
        <translation>Das Verzeichnis wird gefragt …</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>No stations. The directory did not answer.</source>
        <translation>Keine Sender. Das Verzeichnis hat nicht geantwortet.</translation>
    </message>
    <message>
        <source>No stations. The directory&apos;s answer cannot be read.</source>
        <translation>Keine Sender. Die Antwort des Verzeichnisses ist nicht lesbar.</translation>
    </message>
    <message>
        <source>No stations found.</source>
        <translation>Keine Sender gefunden.</translation>
    </message>
    <message>
        <source>Drag stations here to keep them, or press %1.</source>
        <translation>Sender, die bleiben sollen, hierher ziehen oder %1 drücken.</translation>
    </message>
    <message>
        <source>Filter genres</source>
        <translation>Genres filtern</translation>
    </message>
    <message>
        <source>Genres</source>
        <translation>Genres</translation>
    </message>
    <message>
        <source>S&amp;ort By</source>
        <translation>Sortieren na&amp;ch</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Keyboard Shortcuts</source>
        <translation>&amp;Tastenkürzel</translation>
    </message>
    <message>
        <source>Recent &amp;Titles...</source>
        <translation>Letzte T&amp;itel …</translation>
    </message>
    <message>
        <source>&amp;About Plumtide</source>
        <translation>&amp;Über Plumtide</translation>
    </message>
    <message>
        <source>Show &amp;Main Window</source>
        <translation>&amp;Hauptfenster zeigen</translation>
    </message>
    <message>
        <source>&amp;Close Window</source>
        <translation>Fenster &amp;schließen</translation>
    </message>
    <message>
        <source>A&amp;ppearance</source>
        <translation>&amp;Aussehen</translation>
    </message>
    <message>
        <source>Pre&amp;vious Favourite</source>
        <translation>&amp;Voriger Favorit</translation>
    </message>
    <message>
        <source>&amp;Next Favourite</source>
        <translation>&amp;Nächster Favorit</translation>
    </message>
</context>
<context>
    <name>PasswordField</name>
    <message>
        <source>Show password</source>
        <translation>Passwort zeigen</translation>
    </message>
    <message>
        <source>Hide password</source>
        <translation>Passwort verbergen</translation>
    </message>
</context>
<context>
    <name>RackAccessibility</name>
    <message>
        <source>custom station</source>
        <translation>eigener Sender</translation>
    </message>
    <message>
        <source>%1 kbit/s</source>
        <translation>%1 kbit/s</translation>
    </message>
    <message>
        <source>%1 of %2 stars</source>
        <translation>%1 von %2 Sternen</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Show Details</source>
        <translation>Details zeigen</translation>
    </message>
</context>
<context>
    <name>RackItem</name>
    <message>
        <source>Details</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Stars</source>
        <translation>Sterne</translation>
    </message>
    <message>
        <source>Unnamed station</source>
        <translation>Sender ohne Namen</translation>
    </message>
    <message>
        <source>Details of %1</source>
        <translation>Details zu %1</translation>
    </message>
    <message>
        <source>Play %1</source>
        <translation>%1 abspielen</translation>
    </message>
    <message>
        <source>Artwork of %1</source>
        <translation>Bild von %1</translation>
    </message>
</context>
<context>
    <name>ServerForm</name>
    <message>
        <source>Scheme</source>
        <translation>Schema</translation>
    </message>
    <message>
        <source>http</source>
        <translation>http</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>http://radio.example.org</source>
        <translation>http://radio.example.org</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>8000</source>
        <translation>8000</translation>
    </message>
    <message>
        <source>Mount point</source>
        <translation>Mountpoint</translation>
    </message>
    <message>
        <source>/live</source>
        <translation>/live</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Private</source>
        <translation>Privat</translation>
    </message>
    <message>
        <source>Send the user name and the password to the server</source>
        <translation>Benutzername und Passwort an den Server senden</translation>
    </message>
</context>
<context>
    <name>ShortcutsWindow</name>
    <message>
        <source>Play the station</source>
        <translation>Den Sender abspielen</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>Go to another station</source>
        <translation>Zu einem anderen Sender gehen</translation>
    </message>
    <message>
        <source>Arrow keys</source>
        <translation>Pfeiltasten</translation>
    </message>
    <message>
        <source>Select several stations</source>
        <translation>Mehrere Sender auswählen</translation>
    </message>
    <message>
        <source>Shift+Arrow keys</source>
        <translation>Umschalt+Pfeiltasten</translation>
    </message>
    <message>
        <source>Add a favourite to the selection</source>
        <translation>Einen Favoriten zur Auswahl hinzunehmen</translation>
    </message>
    <message>
        <source>Ctrl+Space</source>
        <translation>Strg+Leertaste</translation>
    </message>
    <message>
        <source>Menu of the station</source>
        <translation>Menü des Senders</translation>
    </message>
    <message>
        <source>Menu key or Shift+F10</source>
        <translation>Menütaste oder Umschalt+F10</translation>
    </message>
    <message>
        <source>Go to the next part of the window</source>
        <translation>Zum nächsten Teil des Fensters gehen</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>Go to the part before</source>
        <translation>Zum Teil davor gehen</translation>
    </message>
    <message>
        <source>Shift+Tab</source>
        <translation>Umschalt+Tab</translation>
    </message>
    <message>
        <source>From the search to the stations</source>
        <translation>Von der Suche zu den Sendern</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Pfeil ab</translation>
    </message>
    <message>
        <source>Clear the search, or close what is open</source>
        <translation>Die Suche leeren oder schließen, was offen ist</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>Open the menus</source>
        <translation>Die Menüs öffnen</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source> or </source>
        <translation> oder </translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Lists and Cards</source>
        <translation>Listen und Karten</translation>
    </message>
</context>
<context>
    <name>StationForm</name>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Genre</source>
        <translation>Genre</translation>
    </message>
    <message>
        <source>Rating</source>
        <translation>Bewertung</translation>
    </message>
    <message>
        <source>Default picture</source>
        <translation>Standardbild</translation>
    </message>
    <message>
        <source>A file of a picture, typed or dropped here</source>
        <translation>Eine Bilddatei, eingetippt oder hier fallen gelassen</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>Auswählen …</translation>
    </message>
    <message>
        <source>Choose the file of a picture</source>
        <translation>Eine Bilddatei auswählen</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Go back to the default picture</source>
        <translation>Zurück zum Standardbild</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
</context>
<context>
    <name>StationPopover</name>
    <message>
        <source>Station</source>
        <translation>Sender</translation>
    </message>
    <message>
        <source>Choose a Picture</source>
        <translation>Bild auswählen</translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.jpeg *.gif *.webp *.bmp)</source>
        <translation>Bilder (*.png *.jpg *.jpeg *.gif *.webp *.bmp)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Copied</source>
        <translation>Kopiert</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Copy address: %1</source>
        <translation>Adresse kopieren: %1</translation>
    </message>
    <message>
        <source>Copy address</source>
        <translation>Adresse kopieren</translation>
    </message>
</context>
<context>
    <name>StationTable</name>
    <message>
        <source>Station</source>
        <translation>Sender</translation>
    </message>
    <message>
        <source>Genre</source>
        <translation>Genre</translation>
    </message>
    <message>
        <source>kbit/s</source>
        <translation>kbit/s</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Listeners</source>
        <translation>Hörer</translation>
    </message>
    <message>
        <source>Current track</source>
        <translation>Aktueller Titel</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>on air</source>
        <translation>auf Sendung</translation>
    </message>
</context>
<context>
    <name>TableAccessibility</name>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>Sortieren</translation>
    </message>
</context>
<context>
    <name>TitleHistory</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Station</source>
        <translation>Sender</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Plumtide</source>
        <translation>Plumtide</translation>
    </message>
    <message>
        <source>&amp;Show Plumtide</source>
        <translation>Plumtide &amp;zeigen</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>S&amp;topp</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>&amp;Abspielen</translation>
    </message>
</context>
<context>
    <name>VAddRecord</name>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Night Owl Radio</source>
        <translation>Radio Nachteule</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>http://radio.example.org</source>
        <translation>http://radio.example.org</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>8000</source>
        <translation>8000</translation>
    </message>
    <message>
        <source>Mount point</source>
        <translation>Mountpoint</translation>
    </message>
    <message>
        <source>/live</source>
        <translation>/live</translation>
    </message>
    <message>
        <source>Scheme</source>
        <translation>Schema</translation>
    </message>
    <message>
        <source>http</source>
        <translation>http</translation>
    </message>
    <message>
        <source>How a private station is played: http or https</source>
        <translation>Wie ein privater Sender abgespielt wird: http oder https</translation>
    </message>
    <message>
        <source>Private</source>
        <translation>Privat</translation>
    </message>
    <message>
        <source>Send the user name and the password to the server</source>
        <translation>Benutzername und Passwort an den Server senden</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>listener</source>
        <translation>hoerer</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>As given to you</source>
        <translation>Wie mitgeteilt</translation>
    </message>
    <message>
        <source>Add Station</source>
        <translation>Sender hinzufügen</translation>
    </message>
    <message>
        <source>Split into fields</source>
        <translation>Auf die Felder verteilen</translation>
    </message>
    <message>
        <source>There are blanks around the address.</source>
        <translation>Um die Adresse stehen Leerzeichen.</translation>
    </message>
    <message>
        <source>Remove them</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>The address begins with http:// or https:// and the name of a server.</source>
        <translation>Die Adresse beginnt mit http:// oder https:// und dem Namen eines Servers.</translation>
    </message>
    <message>
        <source>A station with a user name is a private one.</source>
        <translation>Ein Sender mit Benutzernamen ist ein privater.</translation>
    </message>
    <message>
        <source>A private station takes port and mount point from their own fields.</source>
        <translation>Ein privater Sender nimmt Port und Mountpoint aus ihren eigenen Feldern.</translation>
    </message>
    <message>
        <source>The port is a number from 1 to 65535.</source>
        <translation>Der Port ist eine Zahl von 1 bis 65535.</translation>
    </message>
    <message>
        <source>The mount point begins with a slash, as in /live</source>
        <translation>Der Mountpoint beginnt mit einem Schrägstrich, wie in /live</translation>
    </message>
    <message>
        <source>The port is put last and has a field of its own. The address ends with the server&apos;s name.</source>
        <translation>Der Port kommt zuletzt und hat ein eigenes Feld. Die Adresse endet mit dem Namen des Servers.</translation>
    </message>
    <message>
        <source>The port is put last. A &quot;?&quot; before it lets the server find the mount point.</source>
        <translation>Der Port kommt zuletzt. Ein „?“ davor lässt den Server den Mountpoint finden.</translation>
    </message>
    <message>
        <source>Join into address</source>
        <translation>In die Adresse übernehmen</translation>
    </message>
    <message>
        <source>A private station needs its port: often 8000, or 80 for http and 443 for https.</source>
        <translation>Ein privater Sender braucht seinen Port: oft 8000, oder 80 für http und 443 für https.</translation>
    </message>
    <message>
        <source>The scheme is http or https.</source>
        <translation>Das Schema ist http oder https.</translation>
    </message>
    <message>
        <source>Without a scheme the station is played by http, not by https.</source>
        <translation>Ohne Schema wird der Sender über http abgespielt, nicht über https.</translation>
    </message>
    <message>
        <source>Use https</source>
        <translation>https verwenden</translation>
    </message>
    <message>
        <source>User name and password are sent only if Private is on.</source>
        <translation>Benutzername und Passwort werden nur gesendet, wenn „Privat“ an ist.</translation>
    </message>
</context>
<context>
    <name>WAbout</name>
    <message>
        <source>About Plumtide</source>
        <translation>Über Plumtide</translation>
    </message>
    <message>
        <source>The icon of Plumtide</source>
        <translation>Das Symbol von Plumtide</translation>
    </message>
    <message>
        <source>A calm, quick internet-radio player.</source>
        <translation>Ein ruhiger, schneller Internetradio-Player.</translation>
    </message>
    <message>
        <source>It stands on these libraries:</source>
        <translation>Es baut auf diesen Bibliotheken auf:</translation>
    </message>
    <message>
        <source>Plumtide itself is free software under the MIT licence.</source>
        <translation>Plumtide selbst ist freie Software unter der MIT-Lizenz.</translation>
    </message>
    <message>
        <source>Copyright © 2026 The Plumtide developers</source>
        <translation>Copyright © 2026 Die Entwickler von Plumtide</translation>
    </message>
    <message>
        <source>C&amp;opy Versions</source>
        <translation>Versionen &amp;kopieren</translation>
    </message>
    <message>
        <source>Copies what a report of a fault should say</source>
        <translation>Kopiert, was in einer Fehlermeldung stehen sollte</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
</context>
<context>
    <name>WPreferences</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>&amp;Give up connecting after</source>
        <translation>&amp;Verbindungsversuch aufgeben nach</translation>
    </message>
    <message>
        <source>10 seconds</source>
        <translation>10 Sekunden</translation>
    </message>
    <message>
        <source>15 seconds</source>
        <translation>15 Sekunden</translation>
    </message>
    <message>
        <source>20 seconds</source>
        <translation>20 Sekunden</translation>
    </message>
    <message>
        <source>25 seconds</source>
        <translation>25 Sekunden</translation>
    </message>
    <message>
        <source>30 seconds</source>
        <translation>30 Sekunden</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <source>Stations a search &amp;asks for</source>
        <translation>&amp;Sender, um die eine Suche bittet</translation>
    </message>
    <message>
        <source>10 stations</source>
        <translation>10 Sender</translation>
    </message>
    <message>
        <source>50 stations</source>
        <translation>50 Sender</translation>
    </message>
    <message>
        <source>100 stations</source>
        <translation>100 Sender</translation>
    </message>
    <message>
        <source>200 stations</source>
        <translation>200 Sender</translation>
    </message>
    <message>
        <source>500 stations</source>
        <translation>500 Sender</translation>
    </message>
    <message>
        <source>stations</source>
        <translation>Sender</translation>
    </message>
    <message>
        <source>&amp;Identify to private stations as</source>
        <translation>Bei &amp;privaten Sendern auftreten als</translation>
    </message>
    <message>
        <source>Plumtide</source>
        <translation>Plumtide</translation>
    </message>
    <message>
        <source>Safari on a Mac</source>
        <translation>Safari auf einem Mac</translation>
    </message>
    <message>
        <source>Firefox on Windows</source>
        <translation>Firefox unter Windows</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>Sp&amp;eichern</translation>
    </message>
</context>
<context>
    <name>addClearAction</name>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
</context>
</TS>
