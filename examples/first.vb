// A first program: is the plug-in there, a call, a test for nil, the message.
//
// GetFolderItem, Picture.Open, Save and MsgBox belong to the host. All names that begin with LMX_
// belong to the plug-in.

Sub Main()
  // The plug-in is there if its first message comes back.
  If LMX_GetErrorMessage(0) <> "General Error: No Error" Then Return

  Dim photo As Picture = Picture.Open(GetFolderItem("photo.jpg"))
  If photo = Nil Then
    MsgBox "photo.jpg is no picture"
    Return
  End If

  Dim turned As Picture = photo.LMX_FreeRotateByShear(12.5, &hFF000000, 100000)
  If turned = Nil Then
    MsgBox "Not turned. " + Reason(LMX_GetLastError())
    Return
  End If
  turned.Save(GetFolderItem("turned.png"), Picture.SaveAsPNG)
End Sub

// The message for the user. Rotations, shears and stretches return nil without an error if a picture
// cannot be made.
Function Reason(code As Integer) As String
  If code = 0 Then Return "There is not enough memory."
  Return LMX_GetErrorMessage(code)
End Function
