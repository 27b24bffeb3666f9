<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR">
<context>
    <name>BookmarkWidget</name>
    <message>
        <source>BOOKMARKS</source>
        <translation>책갈피</translation>
    </message>
    <message>
        <source>TIME</source>
        <translation>시간</translation>
    </message>
</context>
<context>
    <name>DicDialogBase</name>
    <message>
        <source>Search</source>
        <translation>검색</translation>
    </message>
    <message>
        <source>Select a word to find then hit search.</source>
        <translation>찾을 단어를 고른 다음 검색을 누르세요.</translation>
    </message>
</context>
<context>
    <name>FileManager</name>
    <message>
        <source>Play</source>
        <translation>재생</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>추가</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>선택</translation>
    </message>
    <message>
        <source>All</source>
        <translation>모두</translation>
    </message>
    <message>
        <source>No longer there: %1</source>
        <translation>더 이상 없음: %1</translation>
    </message>
    <message>
        <source>Reading…</source>
        <translation>읽는 중…</translation>
    </message>
    <message>
        <source>Choose a film first.</source>
        <translation>먼저 동영상을 고르세요.</translation>
    </message>
    <message>
        <source>Looking for films…</source>
        <translation>동영상을 찾는 중…</translation>
    </message>
    <message>
        <source>%1 chosen</source>
        <translation>%1개 선택</translation>
    </message>
    <message>
        <source>%1 films</source>
        <translation>동영상 %1개</translation>
    </message>
    <message>
        <source>No films here</source>
        <translation>동영상이 없습니다</translation>
    </message>
    <message>
        <source>Left out, names that cannot be used: %1</source>
        <translation>이름 때문에 제외됨: %1</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation>%1을(를) 읽을 수 없음: %2</translation>
    </message>
    <message>
        <source>Cannot be read: %1</source>
        <translation>읽을 수 없음: %1</translation>
    </message>
    <message>
        <source>There are no films in this choice.</source>
        <translation>선택한 것 중에 동영상이 없습니다.</translation>
    </message>
</context>
<context>
    <name>FileManagerDelegate</name>
    <message>
        <source>Folder above</source>
        <translation>상위 폴더</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>폴더</translation>
    </message>
    <message>
        <source>Play list</source>
        <translation>재생 목록</translation>
    </message>
    <message>
        <source>%1 KB</source>
        <translation>%1 KB</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 MB</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 GB</translation>
    </message>
</context>
<context>
    <name>PlayListWidget</name>
    <message>
        <source>PLAY LIST</source>
        <translation>재생 목록</translation>
    </message>
</context>
<context>
    <name>ScreenSaverHold</name>
    <message>
        <source>Playing a video</source>
        <translation>동영상 재생 중</translation>
    </message>
</context>
<context>
    <name>SettingWidget</name>
    <message>
        <source>Reset</source>
        <translation>초기화</translation>
    </message>
    <message>
        <source>On</source>
        <translation>켜기</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>끄기</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>표시</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>숨기기</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
    <message>
        <source>2</source>
        <translation>2</translation>
    </message>
    <message>
        <source>3</source>
        <translation>3</translation>
    </message>
    <message>
        <source>4</source>
        <translation>4</translation>
    </message>
    <message>
        <source>5</source>
        <translation>5</translation>
    </message>
    <message>
        <source>6</source>
        <translation>6</translation>
    </message>
    <message>
        <source>7</source>
        <translation>7</translation>
    </message>
    <message>
        <source>8</source>
        <translation>8</translation>
    </message>
    <message>
        <source>Video Setting</source>
        <translation>동영상 설정</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>영상</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>소리</translation>
    </message>
    <message>
        <source>Subtitle</source>
        <translation>자막</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>화면</translation>
    </message>
    <message>
        <source>Playback</source>
        <translation>재생</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>정보</translation>
    </message>
    <message>
        <source>About</source>
        <translation>제품 정보</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>빨강</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>초록</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>파랑</translation>
    </message>
    <message>
        <source>Audio Track</source>
        <translation>음성 트랙</translation>
    </message>
    <message>
        <source>SPDIF Audio Output</source>
        <translation>SPDIF 음성 출력</translation>
    </message>
    <message>
        <source>Subtitles</source>
        <translation>자막 표시</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>크기</translation>
    </message>
    <message>
        <source>Large</source>
        <translation>크게</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>보통</translation>
    </message>
    <message>
        <source>Small</source>
        <translation>작게</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>색상</translation>
    </message>
    <message>
        <source>White</source>
        <translation>흰색</translation>
    </message>
    <message>
        <source>Gray</source>
        <translation>회색</translation>
    </message>
    <message>
        <source>Sky Blue</source>
        <translation>하늘색</translation>
    </message>
    <message>
        <source>Orange</source>
        <translation>주황</translation>
    </message>
    <message>
        <source>Violet</source>
        <translation>보라</translation>
    </message>
    <message>
        <source>Deep Pink</source>
        <translation>진분홍</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>위치</translation>
    </message>
    <message>
        <source>High</source>
        <translation>위</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>가운데</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>아래</translation>
    </message>
    <message>
        <source>Track</source>
        <translation>트랙</translation>
    </message>
    <message>
        <source>Sync</source>
        <translation>싱크</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>초</translation>
    </message>
    <message>
        <source>Menu Display Time</source>
        <translation>메뉴 표시 시간</translation>
    </message>
    <message>
        <source>Always</source>
        <translation>항상</translation>
    </message>
    <message>
        <source>3 seconds</source>
        <translation>3초</translation>
    </message>
    <message>
        <source>5 seconds</source>
        <translation>5초</translation>
    </message>
    <message>
        <source>10 seconds</source>
        <translation>10초</translation>
    </message>
    <message>
        <source>Menu Opacity</source>
        <translation>메뉴 불투명도</translation>
    </message>
    <message>
        <source>30 Percent</source>
        <translation>30퍼센트</translation>
    </message>
    <message>
        <source>50 Percent</source>
        <translation>50퍼센트</translation>
    </message>
    <message>
        <source>70 Percent</source>
        <translation>70퍼센트</translation>
    </message>
    <message>
        <source>100 Percent</source>
        <translation>100퍼센트</translation>
    </message>
    <message>
        <source>Aspect Ratio</source>
        <translation>화면 비율</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>전체 화면</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>원본 비율</translation>
    </message>
    <message>
        <source>Display Info</source>
        <translation>정보 표시</translation>
    </message>
    <message>
        <source>Privacy on Pause</source>
        <translation>정지 시 화면 숨김</translation>
    </message>
    <message>
        <source>Skip Time</source>
        <translation>건너뛰기 시간</translation>
    </message>
    <message>
        <source>15 seconds</source>
        <translation>15초</translation>
    </message>
    <message>
        <source>20 seconds</source>
        <translation>20초</translation>
    </message>
    <message>
        <source>30 seconds</source>
        <translation>30초</translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1분</translation>
    </message>
    <message>
        <source>Bookmark Controls</source>
        <translation>책갈피 단추</translation>
    </message>
    <message>
        <source>Speed Controls</source>
        <translation>속도 조절 단추</translation>
    </message>
    <message>
        <source>Repeat AB Controls</source>
        <translation>구간 반복 단추</translation>
    </message>
    <message>
        <source>After Playback Finishes</source>
        <translation>재생이 끝난 뒤</translation>
    </message>
    <message>
        <source>Play Next File</source>
        <translation>다음 파일 재생</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>정지</translation>
    </message>
    <message>
        <source>Repeat Current File</source>
        <translation>현재 파일 반복</translation>
    </message>
    <message>
        <source>Scan Video</source>
        <translation>영상 탐색</translation>
    </message>
    <message>
        <source>Seek Bar Only</source>
        <translation>탐색 막대만</translation>
    </message>
    <message>
        <source>Video Key Frames</source>
        <translation>키 프레임 보기</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>버전</translation>
    </message>
    <message>
        <source>Video player built on Qt (LGPL 3), mpv and FFmpeg (GPL 2 or later).
Nanum fonts: SIL Open Font License 1.1.</source>
        <translation>Qt(LGPL 3), mpv와 FFmpeg(GPL 2 이상)로 만든 동영상 재생기입니다.
나눔 글꼴: SIL 오픈 폰트 라이선스 1.1.</translation>
    </message>
    <message>
        <source>Audio</source>
        <translation>음성</translation>
    </message>
    <message>
        <source>Codec : </source>
        <translation>코덱 : </translation>
    </message>
    <message>
        <source>Resolution : </source>
        <translation>해상도 : </translation>
    </message>
    <message>
        <source>Frame Rate : </source>
        <translation>프레임 속도 : </translation>
    </message>
    <message>
        <source>Channels : </source>
        <translation>채널 : </translation>
    </message>
    <message>
        <source>Sampling Rate : </source>
        <translation>샘플링 속도 : </translation>
    </message>
</context>
<context>
    <name>TavelVideo</name>
    <message>
        <source>[ PLAY ]</source>
        <translation>[ 재생 ]</translation>
    </message>
    <message>
        <source>[ STOP ]</source>
        <translation>[ 정지 ]</translation>
    </message>
    <message>
        <source>[ PAUSE]</source>
        <translation>[ 일시정지 ]</translation>
    </message>
    <message>
        <source>[ SEEK ]</source>
        <translation>[ 이동 ]</translation>
    </message>
    <message>
        <source>FORWARD </source>
        <translation>앞으로 </translation>
    </message>
    <message>
        <source>BACKWARD </source>
        <translation>뒤로 </translation>
    </message>
    <message>
        <source>[ SKIP FORWARD ]</source>
        <translation>[ 앞으로 건너뛰기 ]</translation>
    </message>
    <message>
        <source>[ SKIP BACKWARD ]</source>
        <translation>[ 뒤로 건너뛰기 ]</translation>
    </message>
    <message>
        <source> SEC</source>
        <translation>초</translation>
    </message>
    <message>
        <source>[ BOOKMARK ]</source>
        <translation>[ 책갈피 ]</translation>
    </message>
    <message>
        <source>[ A SET ]</source>
        <translation>[ A 지점 설정 ]</translation>
    </message>
    <message>
        <source>[ B SET ]</source>
        <translation>[ B 지점 설정 ]</translation>
    </message>
    <message>
        <source>[ AB RELEASED ]</source>
        <translation>[ 구간 반복 해제 ]</translation>
    </message>
    <message>
        <source>[ FAST FORWARD ]</source>
        <translation>[ 빨리 감기 ]</translation>
    </message>
    <message>
        <source>[ FAST REWIND ]</source>
        <translation>[ 되감기 ]</translation>
    </message>
    <message>
        <source>[ SPEED ]</source>
        <translation>[ 속도 ]</translation>
    </message>
    <message>
        <source>MUTE</source>
        <translation>음소거</translation>
    </message>
    <message>
        <source>MASTER VOLUME</source>
        <translation>전체 음량</translation>
    </message>
    <message>
        <source>AUDIO : </source>
        <translation>음성 : </translation>
    </message>
    <message>
        <source>SUBTITLE :</source>
        <translation>자막 :</translation>
    </message>
    <message>
        <source>Now Loading...</source>
        <translation>불러오는 중...</translation>
    </message>
    <message>
        <source>Stopping...</source>
        <translation>정지하는 중...</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>동영상</translation>
    </message>
    <message>
        <source>FILE NOT FOUND.</source>
        <translation>파일을 찾을 수 없습니다.</translation>
    </message>
    <message>
        <source>CAN NOT EXECUTE FILE.</source>
        <translation>파일을 재생할 수 없습니다.</translation>
    </message>
    <message>
        <source>SPDIF 5.1CH OUT.</source>
        <translation>SPDIF 5.1채널로 출력합니다.</translation>
    </message>
    <message>
        <source>This video has a resolution
greater than 480*360 and is not
guaranteed to play back properly.</source>
        <translation>이 동영상은 해상도가
480*360보다 커서
제대로 재생되지 않을 수 있습니다.</translation>
    </message>
    <message>
        <source>Bookmark list is full.
Please remove some before adding new ones.</source>
        <translation>책갈피 목록이 가득 찼습니다.
새로 넣기 전에 몇 개를 지워 주세요.</translation>
    </message>
    <message>
        <source>Navigation Application running!
Can't Execute Video Player</source>
        <translation>내비게이션이 실행 중입니다!
동영상을 재생할 수 없습니다.</translation>
    </message>
    <message>
        <source>TV-OUT UNSUPPORT MEDIA</source>
        <translation>TV 출력을 지원하지 않는 동영상입니다.</translation>
    </message>
    <message>
        <source>A system error occured while attempting
 to play the last video file.</source>
        <translation>마지막 동영상을 재생하는 중에
 시스템 오류가 발생했습니다.</translation>
    </message>
    <message>
        <source>YES</source>
        <translation>예</translation>
    </message>
    <message>
        <source>NO</source>
        <translation>아니요</translation>
    </message>
    <message>
        <source>Video File Manager</source>
        <translation>동영상 파일 관리자</translation>
    </message>
    <message>
        <source>Playlist is full.  Please remove files before adding new ones.</source>
        <translation>재생 목록이 가득 찼습니다.  새로 넣기 전에 파일을 지워 주세요.</translation>
    </message>
</context>
<context>
    <name>TitleSkin</name>
    <message>
        <source>VIDEO</source>
        <translation>동영상</translation>
    </message>
</context>
</TS>
