[playlist]
NumberOfEntries=1
File1=http://radio.example:8000/live
Title1=x
Length1=-1
Version=2
