// A batch: turns wide pictures of a folder upright, and makes all of them smaller. A picture that
// fails does not stop the others.

Sub MakeAllSmaller(folder As FolderItem, results As FolderItem)
  Dim done As Integer = 0
  Dim failures As String = ""
  For i As Integer = 1 To folder.Count
    Dim problem As String = MakeSmaller(folder.Item(i), results)
    If problem = "" Then
      done = done + 1
    Else
      failures = failures + problem
    End If
  Next
  MsgBox Str(done) + " pictures. " + failures
End Sub

// An empty text, or the error.
Function MakeSmaller(file As FolderItem, results As FolderItem) As String
  Dim name As String = file.Name
  Dim photo As Picture = Picture.Open(file)
  If photo = Nil Then Return name + ": no picture. "

  If photo.Width > photo.Height Then
    photo = photo.LMX_FlipRotate(False, False, 90, 100000)
    If photo = Nil Then Return name + ": " + Reason(LMX_GetLastError()) + ". "
  End If
  Dim width As Integer = 800
  Dim height As Integer = Max(1, Floor(photo.Height * (width / photo.Width)))
  Dim small As Picture = photo.LMX_Stretch(width, height, 100000)
  If small = Nil Then Return name + ": " + Reason(LMX_GetLastError()) + ". "

  small.Save(results.Child(name), Picture.SaveAsPNG)
  Return ""
End Function

// The message for the user. A stretch or a rotation returns nil without an error if there is no
// memory.
Function Reason(code As Integer) As String
  If code = 0 Then Return "There is not enough memory."
  Return LMX_GetErrorMessage(code)
End Function
