[Playlist]
File2=https://b.example/
File1=http://a.example/
File3=file:///etc/passwd
